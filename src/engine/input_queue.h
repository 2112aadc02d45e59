// engine/input_queue.h - the lines that have been read and wait for the command loop.
//
// The thread that reads fills it; the loop empties it and can be woken without a line. Whoever
// still holds the queue may use it: the reading thread outlives the loop.
#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>

namespace vatro {

/// A line without its line feed. Of one that is too long only the beginning is kept.
struct InputLine {
    static constexpr std::size_t MaxLength = 1023;  // bytes; what an interface may send

    std::string text;
    bool tooLong = false;
};

class InputQueue {
  public:
    /// Lines that wait at most: the other side is held back, not stored.
    static constexpr std::size_t Capacity = 256;

    enum class Event { Line, End, Woken };

    /// Waits for a line, the end of input or a wake-up, in this order of urgency.
    Event next(InputLine& line);
    /// Makes the loop look at the game although no line has come.
    void wake();

    /// Adds a line, waits while the queue is full. False when nobody wants lines any more.
    bool push(InputLine line);
    /// No line follows.
    void close();
    /// The loop has ended: nobody wants lines any more.
    void abandon();

  private:
    std::mutex mutex;  // guards all below
    std::condition_variable changed;
    std::deque<InputLine> lines;
    bool woken = false;
    bool closed = false;
    bool abandoned = false;
};

}  // namespace vatro
