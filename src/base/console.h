// base/console.h - standard output: whole lines, from any thread.
//
// Output that cannot be written, because the reader has gone away or the disk is full, ends the
// process: by SIGPIPE or, where that is ignored, with a failure status.
#pragma once

#include <string_view>

namespace vatro {

/// Makes standard output line-buffered. Call before the first output.
void setUpConsole();
/// Standard input is a terminal, where somebody types.
bool inputIsTerminal();
/// Writes the text in one call and flushes it, complete lines or not.
void say(std::string_view text);
/// Writes the text in one call. Complete lines are flushed once `setUpConsole` has been called.
void write(std::string_view text);

/// Says that there is no memory and ends the process with a failure status, without tidying up.
/// Any thread.
[[noreturn]] void endWithoutMemory();

}  // namespace vatro
