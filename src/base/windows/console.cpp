// base/windows/console.cpp - the standard streams by the calls of Windows.
#include "base/console.h"

#include <cstdio>
#include <fcntl.h>
#include <io.h>

#include "base/windows/system.h"

namespace vatro {

void setUpConsole() {
    // A text stream would end each line with two characters, and the input at a Ctrl-Z.
    for (std::FILE* const stream : {stdin, stdout, stderr}) {
        _setmode(_fileno(stream), _O_BINARY);
    }
    // Without a buffer, as a console has it, each character would be a call.
    std::setvbuf(stdout, nullptr, _IOFBF, std::size_t{16} << 10);
}

bool inputIsTerminal() {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode) != 0;
}

bool outputIsTerminal() {
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    return GetConsoleMode(output, &mode) &&
           SetConsoleMode(output, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

int readInput(int descriptor, int /*output*/, char* to, std::size_t size) {
    // Nothing tells that the other end of an output pipe is closed, but the next line does.
    return ::_read(descriptor, to, static_cast<unsigned>(size));
}

}  // namespace vatro
