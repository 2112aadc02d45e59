// shell/command_line.cpp - the program's arguments.
#include "shell/command_line.h"

#include "base/console.h"
#include "base/text.h"

namespace vatro {

void applyCommandLine(const std::vector<std::string>& args, ChessPlayer& player) {
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i] != "-cores") {
            say("# warning: found unknown command line option \"" + args[i] + "\"\n");
            continue;
        }
        if (++i == args.size()) {
            say("# warning: missing argument for command line option \"-cores\"\n");
            return;
        }
        const int cores = readNumber(args[i]);
        if (cores < 1) {
            say("# warning: found bad argument \"" + std::to_string(cores) +
                "\" for command line option \"-cores\", must be a positive number\n");
        } else {
            player.setCores(static_cast<unsigned>(cores));
        }
    }
}

}  // namespace vatro
