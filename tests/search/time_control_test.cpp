// tests/search/time_control_test.cpp - the time for a move follows from the clock and the session.
#include "search/time_control.h"

#include <thread>

#include <gtest/gtest.h>

namespace vatro {
namespace {

/// A time control in centiseconds, and how much of its time has been used.
struct Clock {
    std::uint32_t perSession, base, increment, elapsed;

    void set(TimeControl& control) const {
        control.movesPerSession = perSession;
        control.baseTime = base;
        control.increment = increment;
        control.timeUsed = elapsed;
    }
};

struct PlanCase {
    const char* why;
    Clock clock;
    std::uint32_t plyCount, remainingMoves, sessions;
    std::int32_t max;
};

TEST(TimePlan, SharesTheTimeUpToTheEndOfTheSession) {
    const PlanCase cases[] = {
        {"first of forty moves", {40, 30000, 0, 0}, 0, 40, 1, 675},
        {"move 39", {40, 30000, 0, 29000}, 76, 2, 1, 450},
        {"the last move has 0.9 of what is left", {40, 30000, 0, 29000}, 78, 1, 1, 900},
        {"a new session begins", {40, 30000, 0, 30000}, 80, 40, 2, 675},
        {"one session for the game", {0, 6000, 100, 5000}, 58, 32, 1, 199},
        {"overdrawn", {0, 6000, 0, 7000}, 58, 32, 1, -28},
        {"absurd session length", {4294967295U, 100, 0, 0}, 0, 4294967295U, 1, 0},
    };
    for (const PlanCase& c : cases) {
        SCOPED_TRACE(c.why);
        TimeControl control;
        c.clock.set(control);
        const TimePlan plan = planTime(control, c.plyCount);
        EXPECT_EQ(plan.remainingMoves, c.remainingMoves);
        EXPECT_EQ(plan.sessions, c.sessions);
        EXPECT_EQ(plan.max, c.max);
    }
}

TEST(TimePlan, AnOverdrawnClockStaysSoWithAnotherTimeControl) {
    TimeControl control;
    control.setTimeLeft(INT32_MIN, 0);
    EXPECT_LT(planTime(control, 0).max, 0);
    control.baseTime = 100;
    control.movesPerSession = 0;
    control.forgetTimeLeft();
    EXPECT_LT(planTime(control, 0).max, 0);
}

TEST(TimePlan, ATimeForEachMoveIsAllOfIt) {
    TimeControl control;
    control.timeUsed = 29000;
    control.setTimeLeft(50, 10);
    control.timePerMove = 500;
    EXPECT_EQ(planTime(control, 10).max, 500);
    control.startSearch();
    control.timeForMove = 500;
    const auto limit = control.limitTimeForMove(10, 0);
    ASSERT_TRUE(limit);
    EXPECT_LE(limit->timeForMove, 497);
    EXPECT_GT(limit->timeForMove, 450);  // a busy machine may be late
    control.reset();
    EXPECT_EQ(planTime(control, 0).max, 675);
}

TEST(TimeControl, ARunningClockGoesOnIntoTheNextSearch) {
    TimeControl control;
    control.timeUsed = 500;
    control.startSearch();
    EXPECT_GE(control.clockReading(), 500U);
    control.clockStart -= 30;  // as if 0.3 s had passed
    control.searchStartedAt -= 30;
    EXPECT_GE(control.searchTime(), 30);
    control.startSearch();
    control.stop();
    EXPECT_GE(control.timeUsed, 530U);
    EXPECT_EQ(control.clockReading(), control.timeUsed);
}

TEST(TimeControl, SettingTheClockLeavesTheTimeOfTheSearch) {
    TimeControl control;
    control.startSearch();
    control.timeUsed = 260000;
    EXPECT_LT(control.searchTime(), 100);
    EXPECT_GE(control.clockReading(), 260000U);
}

struct ClockCase {
    const char* why;
    Clock clock;
    std::uint32_t plyCount;
    std::optional<std::int32_t> told;
    unsigned helpers;
    std::int32_t planned;
    std::int32_t timeForMove;
};

TEST(ClockLimit, NoMoveMayTakeMoreThanTheClockHolds) {
    const ClockCase cases[] = {
        {"the first increment is still to come", {0, 100, 100, 0}, 0, {}, 0, 138, 97},
        {"a plan within the clock stays", {0, 100, 100, 0}, 0, {}, 0, 92, 92},
        {"each helper takes its time to stop", {0, 100, 100, 0}, 0, {}, 3, 138, 94},
        {"the reserve is half of a short clock", {40, 100, 0, 95}, 0, {}, 9, 50, 2},
        {"of a single centisecond nothing is left", {40, 100, 0, 99}, 0, {}, 0, 1, 0},
        {"an overdrawn clock", {40, 100, 0, 150}, 0, {}, 0, 5, 0},
        {"an overdrawn plan stays", {40, 100, 0, 150}, 0, {}, 0, -50, -50},
        {"what was told counts, not the session", {40, 100, 0, 0}, 78, 20, 0, 150, 17},
        {"told more than the session has", {40, 100, 0, 0}, 0, 5000, 0, 4000, 4000},
        {"told before the opponent's last move", {40, 6000, 200, 0}, 79, 10, 0, 5000, 7},
        {"told nonsense", {40, 100, 0, 0}, 0, -5, 0, 30, 0},
    };
    for (const ClockCase& c : cases) {
        SCOPED_TRACE(c.why);
        // On a busy machine a centisecond may pass between two lines.
        TimeControl control;
        c.clock.set(control);
        if (c.told) control.setTimeLeft(*c.told, c.plyCount);
        control.searchStartedAt = clockNow();
        control.timeForMove = c.planned;
        const auto limit = control.limitTimeForMove(c.plyCount, c.helpers);
        EXPECT_EQ(limit.has_value(), c.planned != c.timeForMove);
        EXPECT_GE(control.timeForMove, c.timeForMove);
        EXPECT_LE(control.timeForMove, c.timeForMove + 20);
        if (limit) {
            EXPECT_EQ(limit->timeForMove, control.timeForMove);
            EXPECT_GE(limit->held, limit->timeForMove - 20);
        }
    }
}

TEST(ClockLimit, WhatWasToldHoldsUntilTheClockIsSetOtherwise) {
    const auto limitAfter = [](auto event) {
        TimeControl control;
        control.setTimeLeft(10, 0);
        event(control);
        control.searchStartedAt = clockNow();
        control.timeForMove = 1'000'000;
        return control.limitTimeForMove(0, 0)->held;
    };
    EXPECT_EQ(limitAfter([](TimeControl&) {}), 10);
    EXPECT_EQ(limitAfter([](TimeControl& control) { control.timeUsed += 4; }), 6);
    EXPECT_EQ(limitAfter([](TimeControl& control) { control.baseTime = 60000; }), 10);
    EXPECT_EQ(limitAfter([](TimeControl& control) {
                  control.baseTime = 60000;
                  control.timeUsed = 500;
                  control.forgetTimeLeft();
              }),
              59500);
    EXPECT_EQ(limitAfter([](TimeControl& control) { control.restartGame(); }), 30000);
    EXPECT_EQ(limitAfter([](TimeControl& control) { control.reset(); }), 30000);
}

TEST(ClockLimit, TimeToldDuringASearchCountsFromThen) {
    TimeControl control;
    control.startSearch();
    control.clockStart -= 200;  // as if 2 s had passed
    control.searchStartedAt -= 200;
    control.timeForMove = 1000;
    control.setTimeLeft(500, 0);
    EXPECT_GE(control.clockReading(), 29500U);  // not 29700: the 2 s are in what was told
    EXPECT_LT(control.clockReading(), 29600U);
    const auto limit = control.limitTimeForMove(0, 0);
    ASSERT_TRUE(limit);
    EXPECT_LE(limit->held, 500);
    EXPECT_GT(limit->held, 400);
    // The 2 s that are gone, and what is left but for the reserve.
    EXPECT_GE(limit->timeForMove, 697);
    EXPECT_LT(limit->timeForMove, 750);
    control.setTimeLeft(6000, 0);
    EXPECT_FALSE(control.limitTimeForMove(0, 0));  // more time makes no search longer
    EXPECT_EQ(control.timeForMove, limit->timeForMove);
}

TEST(ClockLimit, KeepsBackWhatTheSystemHasTakenAway) {
    TimeControl control;
    const auto timeForMove = [&control](std::int32_t left) {
        control.setTimeLeft(left, 0);
        control.searchStartedAt = clockNow();
        control.timeForMove = 1'000'000;
        return control.limitTimeForMove(0, 0)->timeForMove;
    };
    control.startSearch();
    std::this_thread::sleep_for(std::chrono::milliseconds(60));  // others have the processor
    control.noteProgress();
    control.noteProgress();
    EXPECT_LE(timeForMove(1000), 991);
    EXPECT_LE(timeForMove(7), 1);  // half of it would be too late
    for (int search = 0; search < 200; ++search) {
        control.startSearch();  // nothing lasts for ever
    }
    EXPECT_GE(timeForMove(1000), 997);
    control.startSearch();
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    control.noteProgress();
    control.reset();
    EXPECT_GE(timeForMove(1000), 997);
}

TEST(TimeControl, AnalysisCostsNoPlayingTime) {
    TimeControl control;
    control.timeUsed = 150;
    control.timed = false;
    control.startSearch();
    control.searchStartedAt -= 300;  // as if 3 s had passed
    EXPECT_GE(control.searchTime(), 300);
    control.stop();
    EXPECT_FALSE(control.clockRunning);
    EXPECT_EQ(control.timeUsed, 150U);
    control.timed = true;
    control.startSearch();
    EXPECT_TRUE(control.clockRunning);
    EXPECT_LT(planTime(control, 0).elapsed, 300);
}

}  // namespace
}  // namespace vatro
