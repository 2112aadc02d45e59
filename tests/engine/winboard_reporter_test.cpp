// tests/engine/winboard_reporter_test.cpp - how the reports of a search read.
#include "engine/winboard_reporter.h"

#include <gtest/gtest.h>

#include "search/principal_variation.h"
#include "search/time_control.h"
#include "search/transposition_table.h"

namespace vatro {
namespace {

struct WinBoardReports : testing::Test {
    template <typename... Parameters, typename... Arguments>
    std::string lineOf(void (WinBoardReporter::*report)(Parameters...), const Arguments&... data) {
        testing::internal::CaptureStdout();
        (reporter.*report)(data...);
        std::fflush(stdout);
        return testing::internal::GetCapturedStdout();
    }

    WinBoardReporter reporter;
    const Move e2e4 = makeMoveWord(E2, E4, Normal, DoubleStep);
    const Move a7a8q = makePromotion(A7, A8, Queen);
};

TEST_F(WinBoardReports, AThinkingLineHasDepthScoreTimeNodesAndMoves) {
    PrincipalVariation line;
    line.setTo(a7a8q);
    PrincipalVariation longer;
    longer.setTo(e2e4, line);
    const TranspositionTable table;
    EXPECT_EQ(lineOf(&WinBoardReporter::reportThinking,
                     ThinkingReport{12, -31990, 345, 5'000'000'000, 0, longer, table}),
              "12 -31990 345 5000000000 e2e4 a7a8q\n");
}

TEST_F(WinBoardReports, StatisticsGivePercentagesAndSpeed) {
    SearchStatistics counters;
    counters.qsNodes = 2500;
    counters.cutoffs = {300, 200};
    counters.qsCutoffs = {100, 99};
    counters.ttHits = 7;
    counters.pawnHashHits = 8;
    EXPECT_EQ(lineOf(&WinBoardReporter::reportStatistics,
                     StatisticsReport{50, 10000, 9, counters, 12.5, 0.0}),
              "# total nodes = 10000, QS nodes = 2500 (25%), time = 50, nps = 20000\n"
              "# QS checks = 0\n"
              "# cutoffs = 300, cutoffs on 1st move = 200 (66%)\n"
              "# qsCutoffs = 100, qsCutoffs on 1st move = 99 (99%)\n"
              "# allCutoffs = 400, all cutoffs on 1st move = 299 (74%)\n"
              "# ttHashFull% = 12.5, ttHashHits = 7\n"
              "# pawnHashFull% = 0, pawnHashHits = 8\n"
              "# tbHits = 9\n");
    const std::string nothing = lineOf(&WinBoardReporter::reportStatistics, StatisticsReport{});
    EXPECT_NE(nothing.find("(0%), time = 0, nps = 0\n"), std::string::npos) << nothing;
}

TEST_F(WinBoardReports, ATimePlanShowsOverdrawnTimeAsNegative) {
    TimeControl control;
    control.movesPerSession = 0;
    control.baseTime = 6000;
    control.increment = 100;
    control.timeUsed = 20000;
    EXPECT_EQ(lineOf(&WinBoardReporter::reportTimePlan, planTime(control, 58)),
              "# movesPerSession=0 timePerSession=6000 increment=100\n"
              "# ply=58 fullMoveNumber=30 remainingMoves=32 nSessions=1\n"
              "# total=9000 elapsed=20000 remaining=-11000 available=-7900 max=-222\n"
              "# set maxTime = -222\n");
}

TEST_F(WinBoardReports, StopsNameTheirReason) {
    const auto textOf = [this](const StopReport& report) {
        return lineOf(&WinBoardReporter::reportStop, report);
    };
    EXPECT_EQ(textOf({StopReason::ForcedMove, e2e4}), "# forced move: e2e4\n");
    EXPECT_EQ(textOf({StopReason::ForcedMate, a7a8q, 5}), "# forced mate in 5 plies: a7a8q\n");
    EXPECT_EQ(textOf({StopReason::GettingMated, e2e4, 4}), "# getting mated in 4 plies: e2e4\n");
    EXPECT_EQ(textOf({StopReason::ForcedDraw, e2e4}), "# forced draw: e2e4\n");
    EXPECT_EQ(textOf({StopReason::EasyMove, e2e4}), "# easy move: e2e4\n");
    EXPECT_EQ(textOf({StopReason::NoTimeForMore, e2e4}),
              "# probably not enough time left for another iteration\n");
    EXPECT_EQ(textOf({StopReason::Timeout}), "# timeout\n");
    EXPECT_EQ(textOf({StopReason::DepthLimit, e2e4}), "");
}

}  // namespace
}  // namespace vatro
