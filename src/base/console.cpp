// base/console.cpp - writing to standard output.
#include "base/console.h"

#include <cstdio>
#include <cstdlib>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace vatro {

void setUpConsole() { std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ); }

#ifdef _WIN32
bool inputIsTerminal() { return ::_isatty(::_fileno(stdin)) != 0; }
#else
bool inputIsTerminal() { return ::isatty(STDIN_FILENO) != 0; }
#endif

void write(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) std::_Exit(EXIT_FAILURE);
}

void say(std::string_view text) {
    write(text);
    if (std::fflush(stdout) != 0) std::_Exit(EXIT_FAILURE);
}

void endWithoutMemory() {
    say("# ERROR: out of memory\n");
    std::_Exit(EXIT_FAILURE);
}

}  // namespace vatro
