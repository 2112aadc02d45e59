// search/time_control.cpp - the clock and the time for a move.
//
// The sums are unsigned and wrap; read as signed numbers, an overdrawn clock gives a negative time
// for the move, and the first look at the clock ends the search.
#include "search/time_control.h"

#include <algorithm>
#include <chrono>

namespace vatro {
namespace {

constexpr std::uint32_t MovesAssumed = 32;  // to the end of a game without sessions; tuned
constexpr double ShareOfTime = 0.9;         // a tenth is kept back; tuned

// Kept back of the clock for stopping the helpers; measured on two busy cores
// (bench/short_clocks.py).
constexpr std::int64_t ReservePerHelper = 1;

// Between two notes of a search's progress that nothing delays. More is what the system takes away.
constexpr std::int32_t OrdinaryDelayMs = 10;
constexpr std::int32_t MostDelayMs = 1000;  // a computer that has slept is another matter
constexpr std::int32_t DelayStays = 15;     // parts of 16 with each search; no derivation

TimePlan planSession(const TimeControl& control, std::uint32_t plyCount, std::uint32_t elapsed) {
    TimePlan plan{};
    plan.plyCount = plyCount;
    plan.fullMoveNumber = plyCount / 2 + 1;
    plan.movesPerSession = control.movesPerSession;
    plan.baseTime = control.baseTime;
    plan.increment = control.increment;
    if (plan.movesPerSession == 0) {
        plan.sessions = 1;
        plan.remainingMoves = MovesAssumed;
    } else {
        const std::uint32_t move = plan.fullMoveNumber % plan.movesPerSession;  // 0: the last one
        plan.remainingMoves = move == 0 ? 1 : plan.movesPerSession + 1 - move;
        plan.sessions = plan.fullMoveNumber / plan.movesPerSession + (move == 0 ? 0 : 1);
    }
    const std::uint32_t total =
        plan.increment * plan.fullMoveNumber + plan.sessions * plan.baseTime;
    const std::uint32_t remaining = total - elapsed;
    plan.total = static_cast<std::int32_t>(total);
    plan.elapsed = static_cast<std::int32_t>(elapsed);
    plan.remaining = static_cast<std::int32_t>(remaining);
    plan.available =
        static_cast<std::int32_t>((plan.remainingMoves - 1) * plan.increment + remaining);
    plan.max = static_cast<std::int32_t>(plan.available * ShareOfTime / plan.remainingMoves);
    return plan;
}

/// Each move has `time` to itself.
TimePlan planMove(std::uint32_t time, std::uint32_t plyCount) {
    TimePlan plan{};
    plan.plyCount = plyCount;
    plan.fullMoveNumber = plyCount / 2 + 1;
    plan.movesPerSession = plan.remainingMoves = plan.sessions = 1;
    plan.baseTime = time;
    plan.total = plan.remaining = plan.available = plan.max = static_cast<std::int32_t>(time);
    return plan;
}

}  // namespace

std::uint32_t clockNow() {
    using Centiseconds = std::chrono::duration<std::int64_t, std::centi>;
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<Centiseconds>(now).count());
}

std::uint32_t TimeControl::readingAt(std::uint32_t now) const {
    return timeUsed + (clockRunning ? now - clockStart : 0);
}

std::uint32_t TimeControl::clockReading() const {
    const std::lock_guard lock(mutex);
    return readingAt(clockNow());
}

void TimeControl::startSearch() {
    const std::lock_guard lock(mutex);
    const std::uint32_t now = clockNow();
    searchStartedAt = now;
    latestProgress = std::chrono::steady_clock::now();
    longestDelayMs = longestDelayMs * DelayStays / (DelayStays + 1);
    if (!timed || clockRunning) return;
    clockStart = now;
    clockRunning = true;
}

void TimeControl::noteProgress() {
    const Instant now = std::chrono::steady_clock::now();
    const auto delay = std::chrono::duration_cast<std::chrono::milliseconds>(now - latestProgress);
    latestProgress = now;
    const auto counted = std::min<std::int64_t>(delay.count(), MostDelayMs);
    longestDelayMs = std::max(longestDelayMs.load(), static_cast<std::int32_t>(counted));
}

/// Centiseconds.
std::int64_t TimeControl::expectedDelay() const {
    const std::int32_t delay = longestDelayMs;
    return delay > OrdinaryDelayMs ? delay / 10 + 1 : 0;
}

void TimeControl::start() {
    const std::lock_guard lock(mutex);
    clockStart = clockNow();
    clockRunning = true;
    timed = true;
}

void TimeControl::stop() {
    const std::lock_guard lock(mutex);
    timeUsed = readingAt(clockNow());
    clockRunning = false;
}

void TimeControl::reset() {
    stop();
    restartGame();
    clockStart = 0;
    timed = true;
    depthLimited = false;
    longestDelayMs = 0;
    timePerMove = 0;
    movesPerSession = 40;
    baseTime = 30000;
    increment = 0;
}

void TimeControl::restartGame() {
    const std::lock_guard lock(mutex);
    timeUsed = 0;
    toldLeft.reset();
}

void TimeControl::setTimeLeft(std::int32_t left, std::uint32_t plyCount) {
    // Else an overdrawn clock could have so much time used that it wraps when "level" follows.
    left = std::max(left, INT32_MIN / 2);
    const auto total = static_cast<std::uint32_t>(planSession(*this, plyCount, 0).total);
    const std::lock_guard lock(mutex);
    timeUsed = total - static_cast<std::uint32_t>(left);
    clockStart = clockNow();
    toldLeft = left;
    toldReading = timeUsed;
}

void TimeControl::forgetTimeLeft() {
    const std::lock_guard lock(mutex);
    toldLeft.reset();
}

/// The increment of this move comes only after it, as do those of the moves that follow.
std::int64_t TimeControl::timeLeft(std::uint32_t now, std::uint32_t plyCount) const {
    if (timePerMove) {  // from the start of the search, or of the clock if that came later
        const std::uint32_t used = std::min(now - searchStartedAt, now - clockStart);
        return std::int64_t{timePerMove} - static_cast<std::int32_t>(used);
    }
    const std::uint32_t reading = readingAt(now);
    if (toldLeft) return std::int64_t{*toldLeft} - static_cast<std::int32_t>(reading - toldReading);
    return std::int64_t{planTime(*this, plyCount, reading).remaining} - increment;
}

std::optional<ClockLimit> TimeControl::limitTimeForMove(std::uint32_t plyCount, unsigned helpers) {
    const std::lock_guard lock(mutex);
    const std::uint32_t now = clockNow();
    const std::int64_t left = std::max<std::int64_t>(timeLeft(now, plyCount), 0);
    const std::int64_t usual = std::min(reserve + ReservePerHelper * helpers, (left + 1) / 2);
    const std::int64_t kept = std::min(usual + expectedDelay(), left);
    const std::int64_t searched = static_cast<std::int32_t>(now - searchStartedAt);
    const std::int64_t most = std::min<std::int64_t>(searched + left - kept, INT32_MAX);
    if (timeForMove <= most) return std::nullopt;
    timeForMove = static_cast<std::int32_t>(most);
    return ClockLimit{static_cast<std::int32_t>(left), timeForMove};
}

TimePlan planTime(const TimeControl& control, std::uint32_t plyCount) {
    return planTime(control, plyCount, control.clockReading());
}

TimePlan planTime(const TimeControl& control, std::uint32_t plyCount, std::uint32_t elapsed) {
    const std::uint32_t time = control.timePerMove;
    return time ? planMove(time, plyCount) : planSession(control, plyCount, elapsed);
}

}  // namespace vatro
