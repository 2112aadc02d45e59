// src/search/time_control.h - the time control of a game and the engine's clock.
//
// All times are centiseconds. The fields are atomic because an interface may set the time while a
// search reads the clock; each is independent of the others, so relaxed order would do.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

namespace vatro {

/// Centiseconds on a steady clock, modulo 2^32; only differences mean something.
std::uint32_t clockNow();

struct TimeControl {
    std::atomic<bool> clockRunning{false};
    std::atomic<std::uint32_t> timeUsed{0};         // by the engine in this game, clock stopped
    std::atomic<std::uint32_t> clockStart{0};       // clockNow() when the clock was started
    std::atomic<std::uint32_t> searchStart{0};      // clock reading when the search began
    std::atomic<std::uint32_t> searchStartedAt{0};  // clockNow() then
    std::atomic<std::int32_t> timeForMove{0};  // allotted to this move; negative when overdrawn
    std::atomic<std::uint32_t> movesPerSession{40};  // 0: one session is the whole game
    std::atomic<std::uint32_t> baseTime{30000};      // per session
    std::atomic<std::uint32_t> increment{0};         // per move
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

    /// Starts the clock for a search, or lets it run on, and marks the search's start.
    void startSearch();
    /// Starts the clock from zero, for a measurement.
    void restart();
    /// Stops the clock if it runs.
    void stop();
    /// What a new game begins with: 40 moves in five minutes, nothing used, no depth limit.
    void reset();
};

/// How the time for one move is found.
struct TimePlan {
    std::uint32_t fullMoveNumber;
    std::uint32_t remainingMoves;  // up to the end of the session
    std::uint32_t sessions;        // begun so far, this one included
    std::int32_t total;            // time for all moves up to the end of the session
    std::int32_t elapsed;
    std::int32_t remaining;
    std::int32_t available;  // remaining time and the increments still to come
    std::int32_t max;        // for this move

    /// The comment lines that report the plan.
    std::string text(const TimeControl& control, std::uint32_t plyCount) const;
};
TimePlan planTime(const TimeControl& control, std::uint32_t plyCount);

}  // namespace vatro
