// tests/board/game_test.cpp - the record of a game.
#include "board/game.h"

#include "support.h"

namespace vatro {
namespace {

TEST(Game, TakesBackToTheStartAndFillsUpToItsBound) {
    const auto game = std::make_unique<Game>();
    ASSERT_TRUE(game->setup(startPositionFEN));
    const std::string start = game->board.toFEN();
    const char* shuffle[] = {"g1f3", "g8f6", "f3g1", "f6g8"};
    for (unsigned i = 0; !game->isFull(); ++i) {
        const Move move = findMove(game->board, shuffle[i % 4]);
        ASSERT_NE(move, NoMove);
        game->play(move);
        ASSERT_EQ(game->board.plyRecords[i].movePlayed, move);
    }
    EXPECT_EQ(game->plyCount, PlyRecordCount - 1);
    EXPECT_EQ(game->board.ply, PlyRecordCount - 1);
    while (game->plyCount > 0) {
        game->takeBack();
    }
    EXPECT_EQ(game->board.toFEN(), start);
    EXPECT_TRUE(isConsistent(game->board));
}

TEST(Game, ASetupForgetsTheMoves) {
    const auto game = std::make_unique<Game>();
    ASSERT_TRUE(game->setup(startPositionFEN));
    game->play(findMove(game->board, "e2e4"));
    ASSERT_TRUE(game->setup("4k3/8/8/8/8/8/8/4K3 w - - 0 1"));
    EXPECT_EQ(game->plyCount, 0U);
    EXPECT_EQ(game->board.ply, 0U);
}

}  // namespace
}  // namespace vatro
