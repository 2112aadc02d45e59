// base/console.cpp - writing to standard output; posix/ and windows/ have the rest.
#include "base/console.h"

#include <cstdio>
#include <cstdlib>

namespace vatro {
namespace {

void put(std::string_view text, bool mustFlush) {
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), stdout) == text.size() &&
                           (!mustFlush || std::fflush(stdout) == 0);
    if (!isWritten) std::_Exit(EXIT_FAILURE);
}

}  // namespace

void say(std::string_view text) { put(text, true); }

// Not by a line-buffered stream, which Windows does not have.
void write(std::string_view text) { put(text, text.find('\n') != std::string_view::npos); }

void endWithoutMemory() {
    say("# ERROR: out of memory\n");
    std::_Exit(EXIT_FAILURE);
}

}  // namespace vatro
