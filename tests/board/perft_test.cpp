// tests/board/perft_test.cpp - published leaf counts: the strongest check of generation, make and
// unmake together.
#include <cstdint>

#include "support.h"

namespace vatro {
namespace {

std::uint64_t countLeaves(Board_0x88& board, unsigned depth) {
    if (depth == 1) return countLegalMoves(board);
    MoveList list;
    generateLegalMoves(board, list);
    std::uint64_t leaves = 0;
    for (const ScoredMove& entry : list) {
        UndoRecord undo;
        makeMovePerft(board, entry.move(), undo);
        leaves += countLeaves(board, depth - 1);
        unmakeMovePerft(board, entry.move(), undo);
    }
    return leaves;
}

struct Published {
    const char* fen;
    unsigned depth;
    std::uint64_t leaves;
};

class Perft : public testing::TestWithParam<Published> {};

TEST_P(Perft, MatchesThePublishedCountForBothColours) {
    const auto& [fen, depth, leaves] = GetParam();
    const auto board = boardOf(fen);
    EXPECT_EQ(countLeaves(*board, depth), leaves) << fen;
    EXPECT_TRUE(isConsistent(*board));
    const std::string mirrored = mirroredFEN(fen);
    EXPECT_EQ(countLeaves(*boardOf(mirrored), depth), leaves) << mirrored;
}

INSTANTIATE_TEST_SUITE_P(
    WholeGames,
    Perft,
    testing::Values(Published{richPositions[0], 4, 197281},
                    Published{richPositions[1], 3, 97862},
                    Published{richPositions[2], 4, 43238},
                    Published{richPositions[3], 3, 9467},
                    Published{richPositions[4], 3, 62379},
                    Published{richPositions[5], 4, 182838},
                    Published{
                        "r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - - 0 10",
                        3, 89890}));

INSTANTIATE_TEST_SUITE_P(
    OneRuleEach,
    Perft,
    testing::Values(
        Published{"3k4/3p4/8/K1P4r/8/8/8/8 b - - 0 1", 6, 1134888},    // en passant: pinned along
        Published{"8/8/4k3/8/2p5/8/B2P2K1/8 w - - 0 1", 6, 1015133},   // the rank, the diagonal;
        Published{"8/8/1k6/2b5/2pP4/8/5K2/8 b - d3 0 1", 6, 1440467},  // it answers a check
        Published{"5k2/8/8/8/8/8/8/4K2R w K - 0 1", 6, 661072},        // castling gives check,
        Published{"3k4/8/8/8/8/8/8/R3K3 w Q - 0 1", 6, 803711},        // on both wings
        Published{"r3k2r/1b4bq/8/8/8/8/7B/R3K2R w KQkq - 0 1", 4, 1274206},  // rooks are captured
        Published{"r3k2r/8/3Q4/8/8/5q2/8/R3K2R b KQkq - 0 1", 4, 1720476},   // squares are attacked
        Published{"2K2r2/4P3/8/8/8/8/8/3k4 w - - 0 1", 6, 3821001},    // a promotion ends a check
        Published{"8/8/1P2K3/8/2n5/1q6/8/5k2 b - - 0 1", 5, 1004658},  // a check uncovered
        Published{"4k3/1P6/8/8/8/8/K7/8 w - - 0 1", 6, 217342},        // a promotion gives check
        Published{"8/P1k5/K7/8/8/8/8/8 w - - 0 1", 6, 92683},          // underpromotion
        Published{"K1k5/8/P7/8/8/8/8/8 w - - 0 1", 6, 2217},           // stalemate
        Published{"8/k1P5/8/1K6/8/8/8/8 w - - 0 1", 7, 567584},        // and with promotion
        Published{"8/8/2k5/5q2/5n2/8/5K2/8 b - - 0 1", 4, 23527}));    // double check

}  // namespace
}  // namespace vatro
