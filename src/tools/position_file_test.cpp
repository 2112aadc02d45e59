// tools/position_file_test.cpp - reading the lines and reporting on each.
//
// Lines are read in pieces of 127 characters; the rest of a longer one counts as a line of its own.
#include "tools/position_file_test.h"

#include <cstdio>
#include <string>

#include "base/console.h"
#include "base/regular_file.h"
#include "base/text.h"

namespace vatro {
namespace {

constexpr int LineBufferSize = 128;  // bytes, with the closing zero

void trim(std::string& line) {
    if (line.ends_with('\n')) line.pop_back();
    if (line.ends_with('\r')) line.pop_back();
    while (line.ends_with(' ')) {
        line.pop_back();
    }
}

}  // namespace

bool runPositionFileTest(Board_0x88& board, const char* path, StopCheck& stop) {
    const FileHandle file = openRegularFile(path);
    if (!file) {
        say(formatted("# ERROR: failed to open file \"%s\" for reading\n", path));
        return false;
    }
    char buffer[LineBufferSize];
    for (int number = 1; std::fgets(buffer, sizeof buffer, file.get()); ++number) {
        if (stop.mustStop()) {
            write(InterruptedLine);
            break;
        }
        std::string line = buffer;
        trim(line);
        write(formatted("Running test no. %d for FEN:\n%s\n\n", number, line.c_str()));
        if (!board.setupFromFEN(line.c_str())) {
            write(formatted("# ERROR: illegal FEN: \"%s\"\n", line.c_str()));
        }
        write("\n");
    }
    say("");
    return true;
}

}  // namespace vatro
