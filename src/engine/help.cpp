// engine/help.cpp - laying out the table of commands, and other hints.
#include "engine/help.h"

#include "base/text.h"
#include "engine/command_table.h"

namespace vatro {

const char endOfGameText[] =
    "# The game is over. \"new\" starts another, \"undo\" takes back a move.\n";

std::string helpText() {
    const auto commands = WBEngine::commands();
    const std::size_t rows = (commands.size() + 1) / 2;
    std::string text;
    for (std::size_t row = 0; row < rows; ++row) {
        std::string line = "#";
        for (std::size_t i = row; i < commands.size(); i += rows) {
            line += formatted(" %-10s %-27s", commands[i].name.data(), commands[i].summary);
        }
        text += trimLine(line);
        text += '\n';
    }
    return text + "# A move is its two squares: e2e4, e1g1 to castle, e7e8q for a new queen.\n";
}

std::string unknownWordText(const std::string& word) {
    return "# unknown command \"" + word + "\"; \"help\" lists the commands\n";
}

}  // namespace vatro
