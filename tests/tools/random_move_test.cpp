// tests/tools/random_move_test.cpp - the short cut draws what the list would give.
#include "tools/random_move.h"

#include <cstdlib>

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
            std::srand(seed);
            const Move expected = pickRandomMove(list);
            std::srand(seed);
            ASSERT_EQ(drawLegalMove(board), expected) << board.toFEN();
        }
    };
    for (const char* fen : richPositions) {
        forEachRandomPosition(fen, 100, random, check);
    }
    for (const char* fen : oddPositions) {
        forEachRandomPosition(fen, 20, random, check);
    }
    EXPECT_EQ(drawLegalMove(*boardOf("7k/5K2/6Q1/8/8/8/8/8 b - - 0 1")), NoMove);
}

}  // namespace
}  // namespace vatro
