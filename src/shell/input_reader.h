// shell/input_reader.h - reading lines in a separate thread.
#pragma once

#include <memory>
#include <string_view>

#include "shell/input_queue.h"

namespace vatro {

/// Cuts a stream of bytes into lines.
class LineSplitter {
  public:
    explicit LineSplitter(InputQueue& target) : queue(target) {}

    /// False when the loop has ended.
    bool feed(std::string_view bytes);
    /// Ends the stream; a last line needs no line feed.
    void finish();

  private:
    void append(std::string_view bytes);

    InputQueue& queue;
    InputLine line;
    bool started = false;  // a byte of the line has come
};

/// Reads lines from a file descriptor until its end, in a detached thread, which may be blocked in
/// a read when the process ends. So it shares the ownership of the queue and does not use stdio:
/// exit() would wait for the lock that a blocked stdio read holds.
///
/// The input also ends when nobody reads the file descriptor `output` any more: a search that has
/// nothing to print would not notice. (-1: not watched.)
///
/// False when the system gives no thread.
[[nodiscard]] bool startInputReader(std::shared_ptr<InputQueue> queue,
                                    int fileDescriptor,
                                    int output = -1);

}  // namespace vatro
