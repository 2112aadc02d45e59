// tests/uci/uci_reporter_test.cpp - the words of info lines, and the reading of "go".
#include "uci/uci_reporter.h"

#include <gtest/gtest.h>

#include "board/game.h"
#include "search/transposition_table.h"
#include "uci/go_command.h"

namespace vatro {
namespace {

TEST(UciReports, MatesAreCountedInMoves) {
    EXPECT_EQ(uciScore(-31), "cp -31");
    EXPECT_EQ(uciScore(32000 - 1), "mate 1");  // the side to move mates at once
    EXPECT_EQ(uciScore(32000 - 3), "mate 2");
    EXPECT_EQ(uciScore(2 - 32000), "mate -1");
    EXPECT_EQ(uciScore(4 - 32000), "mate -2");
    EXPECT_EQ(uciScore(-32000), "mate 0");
}

TEST(UciReports, AThinkingLineSaysWhatItsScoreIs) {
    PrincipalVariation line;
    line.setTo(makePromotion(A7, A8, Queen));
    TranspositionTable table;
    ASSERT_TRUE(table.resize(1));
    UciReporter reporter;
    const auto textOf = [&](const RootLine& root, std::int32_t elapsedCs) {
        testing::internal::CaptureStdout();
        reporter.reportThinking({root, 20, elapsedCs, 5'000'000'000, 3, table});
        std::fflush(stdout);
        return testing::internal::GetCapturedStdout();
    };
    EXPECT_EQ(textOf({12, 50, Bound::Exact, 2, line}, 200),
              "info depth 12 seldepth 20 multipv 2 score cp 50 nodes 5000000000 nps 2500000000 "
              "tbhits 3 time 2000 hashfull 0 pv a7a8q\n");
    line.length = 0;
    EXPECT_EQ(textOf({3, 50, Bound::LowerBound, 1, line}, 0),
              "info depth 3 seldepth 20 multipv 1 score cp 50 lowerbound nodes 5000000000 tbhits 3 "
              "time 0 hashfull 0\n");
}

struct Go : testing::Test {
    GoCommand read(const std::vector<std::string>& words) {
        EXPECT_TRUE(game->setup(startPositionFEN));
        faults.clear();
        return readGoCommand(words, game->board, faults);
    }

    const std::unique_ptr<Game> game = std::make_unique<Game>();
    std::vector<std::string> faults;
};

TEST_F(Go, NumbersKeepToTheirRange) {
    const GoCommand command = read({"wtime", "99999999999999999999", "btime", "-5", "winc", "-1",
                                    "binc", "x", "movestogo", "-3", "depth", "4000", "nodes",
                                    "18446744073709551616", "movetime", "0"});
    EXPECT_EQ(toCentiseconds(*command.timeLeftMs[White]), INT32_MAX);
    EXPECT_EQ(command.timeLeftMs[Black], -5);
    EXPECT_EQ(command.incrementMs[White], 0);
    EXPECT_EQ(command.incrementMs[Black], 0);
    EXPECT_EQ(command.movesToGo, 0U);
    EXPECT_EQ(command.depth, 100U);
    EXPECT_EQ(command.nodes, UINT64_MAX);
    EXPECT_EQ(command.moveTimeMs, 1);
    EXPECT_FALSE(read({"depth"}).timeLeftMs[White]);
}

TEST_F(Go, MovesEndAtTheNextWord) {
    const GoCommand command =
        read({"searchmoves", "e2e4", "e2e5", "D2D4", "depth", "3", "g1f3", "infinite"});
    ASSERT_EQ(command.searchMoves.size(), 2U);
    EXPECT_EQ(moveToText(command.searchMoves[1]), "d2d4");
    EXPECT_EQ(command.depth, 3U);
    EXPECT_TRUE(command.infinite);
    EXPECT_EQ(faults, std::vector<std::string>({"not a legal move: e2e5"}));
}

}  // namespace
}  // namespace vatro
