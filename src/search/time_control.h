// search/time_control.h - the time control of a game and the engine's clock.
//
// All times are centiseconds. The fields are atomic because an interface may set the time while a
// search reads the clock; the mutex keeps together those that make up the clock's reading.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>

namespace vatro {

/// Centiseconds on a steady clock, modulo 2^32; only differences mean something.
std::uint32_t clockNow();

/// The most that a move may take, whatever the plan says.
struct ClockLimit {
    std::int32_t held;         // what is left on the clock
    std::int32_t timeForMove;  // for the whole search, with what it has used so far
};

struct TimeControl {
    /// Measured on two busy cores (bench/short_clocks.py).
    static constexpr std::uint32_t DefaultReserve = 3;

    std::atomic<bool> clockRunning{false};
    std::atomic<std::uint32_t> timeUsed{0};         // by the engine in this game, clock stopped
    std::atomic<std::uint32_t> clockStart{0};       // clockNow() when the clock was started
    std::atomic<std::uint32_t> searchStartedAt{0};  // clockNow() when the search began
    std::atomic<std::int32_t> timeForMove{0};  // allotted to this move; negative when overdrawn
    std::atomic<std::uint32_t> movesPerSession{40};  // 0: one session is the whole game
    std::atomic<std::uint32_t> baseTime{30000};      // per session
    std::atomic<std::uint32_t> increment{0};         // per move
    std::atomic<std::uint32_t> timePerMove{0};  // each move has this alone; 0: what is above holds
    std::atomic<std::uint32_t> reserve{DefaultReserve};  // kept back for the way to the interface
    std::atomic<bool> timed{true};
    std::atomic<bool> depthLimited{false};
    std::atomic<std::uint32_t> maxDepth{0};

    /// The engine's time so far in this game.
    std::uint32_t clockReading() const;
    /// Time since the current search began. The interface may set the clock meanwhile: that must
    /// not end the search.
    std::int32_t searchTime() const {
        return static_cast<std::int32_t>(clockNow() - searchStartedAt);
    }

    /// Marks the start of a search. One against the clock starts it, or lets it run on.
    void startSearch();
    /// Notes that the search is at work. It does so every few milliseconds; when much more time has
    /// passed, others have had the processor, as they may have it again before the next move is
    /// out. The search's main thread only.
    void noteProgress();
    /// Puts a running search against the clock.
    void start();
    /// Stops the clock if it runs.
    void stop();
    /// What a new game begins with: 40 moves in five minutes, nothing used, no depth limit.
    void reset();
    /// Nothing used yet: another game goes on from here.
    void restartGame();

    /// Sets the clock, which may be running: `left` is what remains of it before the move after
    /// `plyCount` half-moves.
    void setTimeLeft(std::int32_t left, std::uint32_t plyCount);
    /// What remains is again what the time control and the time used make of it.
    void forgetTimeLeft();
    /// Lowers `timeForMove` to what the clock allows, if it is beyond that; the limit then. For the
    /// move after `plyCount` half-moves with so many helper threads to stop. Any thread.
    std::optional<ClockLimit> limitTimeForMove(std::uint32_t plyCount, unsigned helpers);

  private:
    using Instant = std::chrono::steady_clock::time_point;

    std::int64_t expectedDelay() const;
    std::uint32_t readingAt(std::uint32_t now) const;
    std::int64_t timeLeft(std::uint32_t now, std::uint32_t plyCount) const;

    mutable std::mutex mutex;              // clockRunning, timeUsed and clockStart change together
    std::optional<std::int32_t> toldLeft;  // by setTimeLeft, under the mutex
    std::uint32_t toldReading = 0;         // of the clock then
    Instant latestProgress{};              // the search's
    std::atomic<std::int32_t> longestDelayMs{0};  // between two notes; fades from search to search
};

/// How the time for one move is found. Times are centiseconds.
struct TimePlan {
    // From the time control and the game.
    std::uint32_t movesPerSession;
    std::uint32_t baseTime;
    std::uint32_t increment;
    std::uint32_t plyCount;

    // What follows.
    std::uint32_t fullMoveNumber;
    std::uint32_t remainingMoves;  // up to the end of the session
    std::uint32_t sessions;        // begun so far, this one included
    std::int32_t total;            // time for all moves up to the end of the session
    std::int32_t elapsed;
    std::int32_t remaining;
    std::int32_t available;  // remaining time and the increments still to come
    std::int32_t max;        // for this move
};
/// The plan for the move after `plyCount` half-moves.
TimePlan planTime(const TimeControl& control, std::uint32_t plyCount);
/// The same when the clock's reading is `elapsed`.
TimePlan planTime(const TimeControl& control, std::uint32_t plyCount, std::uint32_t elapsed);

}  // namespace vatro
