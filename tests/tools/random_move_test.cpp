// tests/tools/random_move_test.cpp - the short cut draws what the list would give.
#include "tools/random_move.h"

#include "board/game.h"
#include "support.h"

namespace vatro {
namespace {

TEST(RandomMove, IsTheOneDrawnFromTheList) {
    TestRandom random(4);
    const auto check = [](const Board_0x88& board) {
        MoveList list;
        generateLegalMoves(board, list);
        for (unsigned seed = 1; seed <= 20; ++seed) {
            Random one(seed);
            Random other(seed);
            ASSERT_EQ(drawLegalMove(board, one), pickRandomMove(list, other)) << board.toFEN();
        }
    };
    for (const char* fen : richPositions) {
        forEachRandomPosition(fen, 100, random, check);
    }
    for (const char* fen : oddPositions) {
        forEachRandomPosition(fen, 20, random, check);
    }
    Random any(1);
    EXPECT_EQ(drawLegalMove(*boardOf("7k/5K2/6Q1/8/8/8/8/8 b - - 0 1"), any), NoMove);
}

}  // namespace
}  // namespace vatro
