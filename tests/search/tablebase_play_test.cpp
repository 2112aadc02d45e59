// tests/search/tablebase_play_test.cpp - endings that the tablebases know are played to their end.
#include <random>

#include <gtest/gtest.h>

#include "board/attacks.h"
#include "board/move_generation.h"
#include "egtb/test_tables.h"
#include "eval/scores.h"
#include "search/fixed_search.h"

namespace vatro {
namespace {

struct TablebasePlay : testing::Test {
    void SetUp() override {
        ASSERT_TRUE(search.tablebases.initialise(egtb::tablesOf({"KQKR", "KBNK"}), 1 << 22));
    }

    /// A random position of an ending, "KQKR" for example; false when it is not a legal one.
    bool place(const std::string& ending) {
        game->plyCount = 0;
        game->board.clearBoard();
        Colour colour = Black;
        for (const char piece : ending) {
            if (piece == 'K') colour = ~colour;
            const auto type = static_cast<PieceType>(std::string("?PNBRQK").find(piece));
            const Square square = as88(static_cast<Square64>(generator() % 64));
            if (game->board.pieceOn[square] != NoPiece) return false;
            if (!game->board.addPiece(square, type, colour)) return false;
        }
        return game->setup(game->board.toFEN().c_str()) &&
               !isAttacked(game->board, game->board.kingSquare(Black), White);
    }

    std::mt19937 generator{20};
    std::unique_ptr<Game> game = std::make_unique<Game>();
    FixedSearch search;
};

TEST_F(TablebasePlay, WonEndingsMateInTheAnnouncedNumberOfPlies) {
    int won = 0;
    for (int tries = 0; won < 200 && tries < 2000; ++tries) {
        if (!place(tries % 2 ? "KQKR" : "KBNK")) continue;
        Move move = search.run(game->board, 1).best;
        if (move == NoMove) continue;
        ASSERT_EQ(search.record.lines.size(), 1U);
        EXPECT_EQ(search.record.lines[0].depth, 0U);
        const int score = search.record.lines[0].score;
        if (score <= MateThreshold) continue;
        SCOPED_TRACE(game->board.toFEN());
        ++won;
        unsigned plies = 0;
        for (; move != NoMove && plies < 200; ++plies) {
            game->play(move);
            move = search.run(game->board, 1).best;
        }
        EXPECT_EQ(static_cast<int>(plies), MateScore - score);
        EXPECT_TRUE(inCheck(game->board));
    }
    EXPECT_EQ(won, 200);
}

TEST_F(TablebasePlay, SeveralLinesComeInTheOrderOfTheirScores) {
    ASSERT_TRUE(game->setup("4k3/8/8/8/8/7r/8/K2Q4 w - - 0 1"));
    search.limits.lines = 5;
    search.run(game->board, 3);
    MoveList list;
    generateLegalMoves(game->board, list);
    const auto& lines = search.record.lines;
    ASSERT_EQ(lines.size(), std::min(5U, list.count));
    for (std::size_t i = 1; i < lines.size(); ++i) {
        EXPECT_EQ(lines[i].rank, i + 1);
        EXPECT_LE(lines[i].score, lines[i - 1].score);
        EXPECT_NE(lines[i].moves, lines[0].moves);
    }
}

TEST_F(TablebasePlay, CastlingRightsKeepThePositionOutOfTheTables) {
    ASSERT_TRUE(game->setup("4k2r/8/8/8/8/8/8/K2Q4 w k - 0 1"));
    search.run(game->board, 3);
    EXPECT_GT(search.record.lines.back().depth, 0U);
    EXPECT_GT(search.searcher->tbHits, 0U);  // where the right is gone
}

// A few hundred nodes of a search are no time, but the disk may be slow.
TEST_F(TablebasePlay, AProbeThatHasReadFromDiskLooksAtTheClock) {
    const char* const fen = "8/8/8/3k4/6r1/8/p7/K2Q4 w - - 0 1";  // captures lead into the tables
    ASSERT_TRUE(game->setup(fen));
    search.run(game->board, 2);
    EXPECT_LT(search.searcher->nodes, 1000U);
    const std::uint64_t diskReads = search.tablebases.statistics().diskReads;
    ASSERT_LT(0U, diskReads);
    EXPECT_LE(diskReads, search.record.looksAtClock);
    search.run(game->board, 2);  // all of it is in the cache
    EXPECT_EQ(search.record.looksAtClock, 0U);
}

}  // namespace
}  // namespace vatro
