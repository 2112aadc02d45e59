// src/board/console.h - standard output, written in whole lines from any thread.
//
// When the reader has gone away the process ends: there is nobody left to play for.
#pragma once

#include <string>
#include <string_view>

#include "board/types.h"

namespace vatro {

/// Writes the text in one call and flushes it.
void say(std::string_view text);
/// Writes the text in one call; a line reaches the reader when it is complete.
void write(std::string_view text);
/// Makes standard output line-buffered. Call before the first output.
void setUpConsole();

/// printf into a string.
#if defined(__GNUC__)
[[gnu::format(printf, 1, 2)]]
#endif
std::string
formatted(const char* format, ...);

}  // namespace vatro
