// engine/input_reader.h - reading lines in a thread of its own.
#pragma once

#include <memory>
#include <string_view>

#include "engine/input_queue.h"

namespace vatro {

/// Cuts a stream of bytes into lines.
class LineSplitter {
  public:
    explicit LineSplitter(InputQueue& target) : queue(target) {}

    /// False when nobody wants lines any more.
    bool feed(std::string_view bytes);
    /// Ends the stream; a last line needs no line feed.
    void finish();

  private:
    void append(std::string_view bytes);

    InputQueue& queue;
    InputLine line;
    bool started = false;  // a byte of the line has come
};

/// Reads lines from a file descriptor until its end, in a thread that nobody waits for: it may
/// still sit in a read when the process ends. It therefore keeps clear of stdio, whose locks are
/// taken at exit, and holds a share of the queue.
void startInputReader(std::shared_ptr<InputQueue> queue, int fileDescriptor);

}  // namespace vatro
