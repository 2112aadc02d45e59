// base/console.h - the standard streams: output by whole lines, from any thread, and plain input.
//
// Output that cannot be written, because the reader has gone away or the disk is full, ends the
// process: by SIGPIPE or, where that is ignored, with a failure status.
#pragma once

#include <cstddef>
#include <string_view>

namespace vatro {

/// Makes the standard streams carry the same bytes on every system. Call before their first use.
void setUpConsole();
/// Standard input is a terminal, where somebody types.
bool inputIsTerminal();
/// Standard output is a terminal, which obeys the usual escape sequences.
bool outputIsTerminal();
/// Waits for bytes from a file descriptor and reads some. 0 or less at the end of input, or when
/// nobody reads the descriptor `output` any more, so far as the system can tell (-1: not watched).
int readInput(int descriptor, int output, char* to, std::size_t size);

/// Writes the text in one call and flushes it, complete lines or not.
void say(std::string_view text);
/// Writes the text in one call, and flushes it when it holds a line end.
void write(std::string_view text);

/// Says that there is no memory and ends the process with a failure status, without tidying up.
/// Any thread.
[[noreturn]] void endWithoutMemory();

}  // namespace vatro
