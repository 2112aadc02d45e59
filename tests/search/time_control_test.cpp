// tests/search/time_control_test.cpp - the time for a move follows from the clock and the session.
#include "search/time_control.h"

#include <gtest/gtest.h>

namespace vatro {
namespace {

struct Case {
    const char* why;
    std::uint32_t perSession, base, increment, plyCount, elapsed;
    std::uint32_t remainingMoves, sessions;
    std::int32_t max;
};

TEST(TimePlan, SharesTheTimeUpToTheEndOfTheSession) {
    const Case cases[] = {
        {"first of forty moves", 40, 30000, 0, 0, 0, 40, 1, 675},
        {"move 39", 40, 30000, 0, 76, 29000, 2, 1, 450},
        {"the last move has 0.9 of what is left", 40, 30000, 0, 78, 29000, 1, 1, 900},
        {"a new session begins", 40, 30000, 0, 80, 30000, 40, 2, 675},
        {"one session for the game", 0, 6000, 100, 58, 5000, 32, 1, 199},
        {"overdrawn", 0, 6000, 0, 58, 7000, 32, 1, -28},
        {"absurd session length", 4294967295U, 100, 0, 0, 0, 4294967295U, 1, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        TimeControl control;
        control.movesPerSession = c.perSession;
        control.baseTime = c.base;
        control.increment = c.increment;
        control.timeUsed = c.elapsed;
        const TimePlan plan = planTime(control, c.plyCount);
        EXPECT_EQ(plan.remainingMoves, c.remainingMoves);
        EXPECT_EQ(plan.sessions, c.sessions);
        EXPECT_EQ(plan.max, c.max);
    }
}

TEST(TimePlan, ReportsItself) {
    TimeControl control;
    EXPECT_EQ(planTime(control, 0).text(control, 0),
              "# movesPerSession=40 timePerSession=30000 increment=0\n"
              "# ply=0 fullMoveNumber=1 remainingMoves=40 nSessions=1\n"
              "# total=30000 elapsed=0 remaining=30000 available=30000 max=675\n"
              "# set maxTime = 675\n");
}

TEST(TimeControl, ARunningClockGoesOnIntoTheNextSearch) {
    TimeControl control;
    control.timeUsed = 500;
    control.startSearch();
    EXPECT_EQ(control.searchStart, 500U);
    control.clockStart -= 30;  // as if 0.3 s had passed
    control.searchStartedAt -= 30;
    EXPECT_GE(control.searchTime(), 30);
    control.startSearch();
    EXPECT_GE(control.searchStart, 530U);
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

}  // namespace
}  // namespace vatro
