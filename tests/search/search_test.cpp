// tests/search/search_test.cpp - what a search on one thread finds, and that it is repeatable.
#include <algorithm>

#include <gtest/gtest.h>

#include "board/attacks.h"
#include "board/legality.h"
#include "board/make_move.h"
#include "board/move_generation.h"
#include "eval/scores.h"
#include "search/fixed_search.h"

namespace vatro {
namespace {

struct SearchTest : testing::Test {
    void setUp(const char* fen) { ASSERT_TRUE(game->setup(fen)) << fen; }
    std::string bestOf(const char* fen, unsigned depth) {
        setUp(fen);
        return moveToText(search.run(game->board, depth).best);
    }
    int score() const { return search.record.lines.back().score; }

    std::unique_ptr<Game> game = std::make_unique<Game>();
    FixedSearch search;
};

// Every line that is reported can be played move by move.
void expectLegalLines(const FixedSearch& search, const Board_0x88& start) {
    for (const auto& line : search.record.lines) {
        const auto board = std::make_unique<Board_0x88>(start);
        for (const Move move : line.moves) {
            ASSERT_TRUE(isValidMove(*board, move) && isLegal(*board, move, computePins(*board)))
                << moveToText(move);
            UndoRecord undo;
            makeMove(*board, move, undo);
        }
    }
}

TEST_F(SearchTest, NodeCountsAreTheSignature) { EXPECT_EQ(fixedSearchNodes(6), 210265U); }

TEST_F(SearchTest, TheSameSearchTwiceVisitsTheSameNodes) {
    for (const char* fen : {fixedPositions[4], fixedPositions[12]}) {
        setUp(fen);
        FixedSearch again;
        search.run(game->board, 6);
        again.run(game->board, 6);
        EXPECT_EQ(search.searcher->nodes, again.searcher->nodes);
        EXPECT_EQ(search.searcher->statistics.ttHits, again.searcher->statistics.ttHits);
        expectLegalLines(search, game->board);
    }
}

TEST_F(SearchTest, FindsMates) {
    struct Case {
        const char* fen;
        unsigned depth;
        const char* move;
        int score;
    };
    const Case cases[] = {
        {"6k1/5ppp/8/8/8/8/8/R3K3 w - - 0 1", 4, "a1a8", 31999},
        {"3r3k/6pp/8/8/8/8/5PPP/6K1 b - - 0 1", 4, "d8d1", 31999},
        {"7k/8/6K1/8/8/8/8/R7 w - - 0 1", 4, "a1a8", 31999},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fen);
        EXPECT_EQ(bestOf(c.fen, c.depth), c.move);
        EXPECT_EQ(score(), c.score);
        expectLegalLines(search, game->board);
        ASSERT_TRUE(search.record.stop);
        EXPECT_EQ(search.record.stop->reason, StopReason::ForcedMate);
        EXPECT_EQ(search.record.stop->matePlies, 1);
    }
}

TEST_F(SearchTest, AMateNearerThanTheDepthIsPlayedAndReported) {
    // The second iteration sees the mate in two, which needs three plies.
    EXPECT_EQ(bestOf("8/2kp1Ppr/3N4/K1p5/4B3/8/2q5/8 w - - 0 1", 8), "d6b5");
    EXPECT_EQ(score(), MateScore - 3);
    ASSERT_TRUE(search.record.stop);
    EXPECT_EQ(search.record.stop->reason, StopReason::ForcedMate);
    // Whatever the table makes the iterations find, each of them ends inside its window.
    for (const char* fen :
         {"r5rk/5p1p/5R2/4B3/8/8/7P/7K w - - 0 1", "4r1k1/5ppp/8/8/8/2q5/5PPP/1Q4K1 b - - 0 1"}) {
        SCOPED_TRACE(fen);
        setUp(fen);
        search.run(game->board, 8);
        const Move first = search.run(game->board, 8).best;  // with what the table now knows
        ASSERT_TRUE(search.record.stop);
        EXPECT_EQ(search.record.stop->reason, StopReason::ForcedMate);
        EXPECT_EQ(search.record.lines.back().moves.front(), first);
        EXPECT_GT(score(), MateThreshold);
    }
}

TEST_F(SearchTest, AMateOnTheHundredthPlyComesBeforeTheDraw) {
    EXPECT_EQ(bestOf("6k1/5ppp/8/8/8/8/8/R3K3 w - - 99 80", 2), "a1a8");
    EXPECT_EQ(score(), MateScore - 1);
    EXPECT_NE(bestOf("6k1/5pp1/8/8/8/8/8/R3K3 w - - 99 80", 2), "");  // a check, but no mate
    EXPECT_EQ(score(), DrawScore);
}

TEST_F(SearchTest, SeesThatItIsMated) {
    bestOf("7k/7p/5K2/8/8/8/8/6R1 b - - 0 1", 8);  // every move allows Rg8
    EXPECT_LT(score(), -MateThreshold);
    ASSERT_TRUE(search.record.stop);
    EXPECT_EQ(search.record.stop->reason, StopReason::GettingMated);
    EXPECT_EQ(search.record.stop->matePlies, score() + MateScore);
}

TEST_F(SearchTest, SaysWhyItStops) {
    const std::pair<const char*, StopReason> cases[] = {
        {"8/8/8/3k4/8/8/8/K5n1 w - - 0 1", StopReason::ForcedDraw},
        {"k7/8/8/8/8/8/6q1/7K w - - 0 1", StopReason::ForcedMove},
        {startPositionFEN, StopReason::DepthLimit},
    };
    for (const auto& [fen, reason] : cases) {
        SCOPED_TRACE(fen);
        bestOf(fen, 4);
        ASSERT_TRUE(search.record.stop);
        EXPECT_EQ(search.record.stop->reason, reason);
    }
}

TEST_F(SearchTest, EndsBetweenIterationsWhenTheClockSaysSo) {
    const char* const easy = "r3k3/1pp3p1/8/8/8/4P3/7P/4Kq2 w q - 0 1";  // takes the queen
    search.control.timeForMove = -1;                                     // overdrawn
    for (const auto& [fen, reason] : {std::pair(startPositionFEN, StopReason::NoTimeForMore),
                                      std::pair(easy, StopReason::EasyMove)}) {
        SCOPED_TRACE(fen);
        EXPECT_NE(bestOf(fen, 8), moveToText(NoMove));
        EXPECT_EQ(search.record.lines.back().depth, 6U);  // the first depth at which it may
        ASSERT_TRUE(search.record.stop);
        EXPECT_EQ(search.record.stop->reason, reason);
    }
    search.control.timeForMove = INT32_MAX;
    bestOf(easy, 8);
    EXPECT_EQ(search.record.stop->reason, StopReason::DepthLimit);
    search.control.timeForMove = -1;
    search.control.timed = false;
    bestOf(easy, 8);
    EXPECT_EQ(search.record.stop->reason, StopReason::DepthLimit);
}

TEST_F(SearchTest, ASideWithItsKingAloneNeverWins) {
    bestOf("8/8/8/3k4/8/8/6R1/6K1 b - - 0 1", 8);
    EXPECT_LE(score(), 0);
    bestOf("8/8/8/8/8/5k2/6p1/6K1 w - - 0 1", 10);
    EXPECT_LE(score(), 0);
}

TEST_F(SearchTest, PlaysForRepetitionWhenItIsLosing) {
    // White is a rook and a pawn down, and its queen can check for ever.
    EXPECT_EQ(bestOf("6k1/6p1/8/7Q/8/8/rq6/7K w - - 0 1", 8), "h5e8");
    EXPECT_EQ(score(), 0);
}

// What only some of the root's moves are worth is not what the position is worth.
TEST_F(SearchTest, ARestrictedRootLeavesNoScoreForOtherSearches) {
    setUp(fixedPositions[4]);
    for (const char* text : {"e2a6", "a2a3"}) {
        search.limits.rootMoves.assign(1, findLegalMove(game->board, text));
        EXPECT_EQ(moveToText(search.run(game->board, 5).best), text);
        const auto stored = search.table.probe(game->board.record().key);
        EXPECT_TRUE(!stored || stored->bound == Bound::LowerBound) << text;
    }
    search.limits = {{}, 3, 0, 0};
    const Move best = search.run(game->board, 5).best;
    const auto stored = search.table.probe(game->board.record().key);
    ASSERT_TRUE(stored);
    EXPECT_EQ(stored->move, best);
}

TEST_F(SearchTest, NoLineBeginsWithTheMoveOfABetterOne) {
    for (const char* fen : {fixedPositions[4], fixedPositions[7], fixedPositions[8]}) {
        SCOPED_TRACE(fen);
        constexpr unsigned Lines = 4;
        setUp(fen);
        search.limits.lines = Lines;
        const Move best = search.run(game->board, 6).best;
        Move firstMoves[Lines] = {};
        unsigned depth = 0;
        for (const SearchRecord::Line& line : search.record.allLines) {
            if (line.depth != depth) {
                EXPECT_TRUE(depth == 0 || firstMoves[Lines - 1]) << "too few lines at " << depth;
                std::fill_n(firstMoves, Lines, NoMove);
                depth = line.depth;
            }
            ASSERT_LE(line.rank, Lines);
            if (line.moves.empty()) continue;  // no move is good enough for the window
            Move* const end = firstMoves + line.rank - 1;
            EXPECT_EQ(std::find(firstMoves, end, line.moves[0]), end) << "at depth " << depth;
            firstMoves[line.rank - 1] = line.moves[0];
        }
        EXPECT_EQ(depth, 6U);
        EXPECT_EQ(best, firstMoves[0]);
        expectLegalLines(search, game->board);
    }
}

TEST_F(SearchTest, PositionsWithoutMovesGiveNone) {
    EXPECT_EQ(bestOf("7k/5K2/6Q1/8/8/8/8/8 b - - 0 1", 4), moveToText(NoMove));
    EXPECT_EQ(score(), -MateScore);  // as the scan of no moves leaves it
}

// Whatever the FEN reader accepts can be searched: kings missing or to be taken, odd pawns.
TEST_F(SearchTest, SearchesPositionsThatNoGameReaches) {
    for (const char* fen : {
             "8/8/8/8/8/8/8/8 w - -",
             "8/8/8/3q4/8/8/PPP5/8 w - - 0 1",
             "4k3/8/8/8/8/8/4R3/4K3 w - - 0 1",
             "P6k/8/8/8/8/8/8/K6p w - - 255 1",
             "1qqqqq1k/8/8/8/8/8/8/1QQQQQ1K w - - 0 1",
             "k7/8/8/8/8/8/8/7P w - - 0 1",
             "rnbqkbnr/8/8/8/8/8/8/RNBQKBNR b KQkq - 99 1",
         }) {
        SCOPED_TRACE(fen);
        setUp(fen);
        search.run(game->board, 3);
        expectLegalLines(search, game->board);
    }
}

// A game that has come near the end of its records is searched without running over it.
TEST_F(SearchTest, StaysWithinTheRecords) {
    setUp(startPositionFEN);
    const char* shuffle[] = {"g1f3", "g8f6", "f3g1", "f6g8"};
    for (unsigned i = 0; game->plyCount < Game::MaxMoves - 1; ++i) {
        MoveList list;
        generateLegalMoves(game->board, list);
        for (const ScoredMove& entry : list) {
            if (moveToText(entry.move()) != shuffle[i % 4]) continue;
            game->play(entry.move());
            break;
        }
    }
    game->board.halfmoveClock = 0;
    EXPECT_NE(search.run(game->board, 6).best, NoMove);
}

// A table entry of another position under the right key must not put its move on the board.
TEST_F(SearchTest, ForeignTableMovesAreNeverPlayed) {
    setUp(fixedPositions[4]);
    const Move foreign = makeMoveWord(A1, H8, EnPassant);
    MoveList list;
    generateLegalMoves(game->board, list);
    for (const ScoredMove& entry : list) {
        UndoRecord undo;
        makeMove(game->board, entry.move(), undo);
        search.table.store(game->board.record().key, {foreign, -20, Bound::Exact, 1, 0});
        unmakeMove(game->board, entry.move(), undo);
    }
    const SearchResult result = search.run(game->board, 5);
    EXPECT_TRUE(isValidMove(game->board, result.best));
    const std::vector<Move>& refused = search.record.refusedMoves;
    EXPECT_FALSE(refused.empty());
    EXPECT_EQ(std::count(refused.begin(), refused.end(), foreign),
              static_cast<std::ptrdiff_t>(refused.size()));
    EXPECT_TRUE(isConsistent(search.searcher->board));
    EXPECT_EQ(search.searcher->board.record().key, game->board.record().key);
}

}  // namespace
}  // namespace vatro
