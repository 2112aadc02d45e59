// src/search/time_control.cpp - the clock and the time for a move.
//
// The sums are unsigned and wrap; read as signed numbers, an overdrawn clock gives a negative time
// for the move, and the first look at the clock ends the search.
#include "search/time_control.h"

#include <chrono>

#include "board/console.h"

namespace vatro {
namespace {

constexpr std::uint32_t MovesAssumed = 32;  // to the end of a game without sessions; tuned
constexpr double ShareOfTime = 0.9;         // kept back: a tenth; tuned

}  // namespace

std::uint32_t clockNow() {
    using Centiseconds = std::chrono::duration<std::int64_t, std::centi>;
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<Centiseconds>(now).count());
}

std::uint32_t TimeControl::clockReading() const {
    return timeUsed + (clockRunning ? clockNow() - clockStart : 0);
}

void TimeControl::startSearch() {
    searchStart = clockReading();
    searchStartedAt = clockNow();
    if (clockRunning) return;
    clockStart = searchStartedAt.load();
    clockRunning = true;
}

void TimeControl::restart() {
    timeUsed = 0;
    searchStart = 0;
    clockStart = clockNow();
    clockRunning = true;
}

void TimeControl::stop() {
    if (!clockRunning.exchange(false)) return;
    timeUsed += clockNow() - clockStart;
}

void TimeControl::reset() {
    stop();
    timeUsed = 0;
    clockStart = 0;
    timed = true;
    depthLimited = false;
    movesPerSession = 40;
    baseTime = 30000;
    increment = 0;
}

TimePlan planTime(const TimeControl& control, std::uint32_t plyCount) {
    TimePlan plan{};
    const std::uint32_t perSession = control.movesPerSession;
    const std::uint32_t elapsed = control.clockReading();
    plan.fullMoveNumber = plyCount / 2 + 1;
    if (perSession == 0) {
        plan.sessions = 1;
        plan.remainingMoves = MovesAssumed;
    } else {
        const std::uint32_t played = plan.fullMoveNumber % perSession;
        plan.remainingMoves = played == 0 ? 1 : perSession + 1 - played;
        plan.sessions = plan.fullMoveNumber / perSession + (played == 0 ? 0 : 1);
    }
    const std::uint32_t total =
        control.increment * plan.fullMoveNumber + plan.sessions * control.baseTime;
    const std::uint32_t remaining = total - elapsed;
    plan.total = static_cast<std::int32_t>(total);
    plan.elapsed = static_cast<std::int32_t>(elapsed);
    plan.remaining = static_cast<std::int32_t>(remaining);
    plan.available =
        static_cast<std::int32_t>((plan.remainingMoves - 1) * control.increment + remaining);
    plan.max = static_cast<std::int32_t>(plan.available * ShareOfTime / plan.remainingMoves);
    return plan;
}

std::string TimePlan::text(const TimeControl& control, std::uint32_t plyCount) const {
    return formatted("# movesPerSession=%u timePerSession=%u increment=%u\n",
                     control.movesPerSession.load(), control.baseTime.load(),
                     control.increment.load()) +
           formatted("# ply=%u fullMoveNumber=%u remainingMoves=%u nSessions=%u\n", plyCount,
                     fullMoveNumber, remainingMoves, sessions) +
           formatted("# total=%d elapsed=%d remaining=%d available=%d max=%d\n", total, elapsed,
                     remaining, available, max) +
           formatted("# set maxTime = %d\n", max);
}

}  // namespace vatro
