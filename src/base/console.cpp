// base/console.cpp - writing to standard output, formatting text for it; posix/ and windows/ have
// the rest.
#include "base/console.h"

#include <cstdarg>
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

std::string formatted(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    return text;
}

}  // namespace vatro
