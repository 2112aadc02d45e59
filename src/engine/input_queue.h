// engine/input_queue.h - lines that have been read and wait for the command loop.
//
// The reading thread fills the queue, the loop empties it. The search wakes the loop through it.
// The reading thread may outlive the loop, so both share the queue's ownership.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>

namespace vatro {

/// A line without its line feed. Only the beginning of a line that is too long is kept.
struct InputLine {
    static constexpr std::size_t MaxLength = 1023;  // bytes; a 1024-byte buffer less its zero

    std::string text;
    bool tooLong = false;
};

class InputQueue {
  public:
    /// Lines that may wait. Reading stops while the queue is full, so a fast sender costs no
    /// memory.
    static constexpr std::size_t Capacity = 256;  // no derivation

    enum class Event { Line, End, Woken };

    using Clock = std::chrono::steady_clock;

    /// Waits for an event. Lines come first, then the end of input, then a wake-up.
    Event next(InputLine& line);
    /// Wakes the loop although no line has come. Any thread.
    void wake();

    /// Adds a line; waits while the queue is full. False when the loop has ended.
    bool push(InputLine line);
    /// The input has ended: no line follows.
    void close();
    /// The loop has ended: no line is wanted any more.
    void abandon();

    /// True when the program is to end, by a line "quit" or by the end of input, and the first of
    /// the two came after `moment`. Any thread; costs no more than a read.
    bool endCameAfter(Clock::time_point moment) const {
        return endCame.load(std::memory_order_relaxed) > moment;
    }

  private:
    void noteEnd();

    static constexpr Clock::time_point Never = Clock::time_point::min();
    std::atomic<Clock::time_point> endCame{Never};

    std::mutex mutex;  // guards all below; held by those who write `endCame`
    std::condition_variable changed;
    std::deque<InputLine> lines;
    bool woken = false;
    bool closed = false;
    bool abandoned = false;
};

}  // namespace vatro
