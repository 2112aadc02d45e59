// tests/board/make_move_test.cpp - make and unmake: incremental values against values from scratch,
// and nothing left behind.
#include "board/make_move.h"

#include <vector>

#include "support.h"

namespace vatro {
namespace {

/// Makes and unmakes every legal move of a position, two deep.
void checkAllMoves(Board_0x88& board, int depth) {
    board.perftKeys[board.perftPly] = board.record().key;
    const std::string before = positionBytes(board);
    MoveList list;
    generateLegalMoves(board, list);
    for (const ScoredMove& entry : list) {
        SCOPED_TRACE(board.toFEN() + ' ' + moveToText(entry.move()));
        UndoRecord undo;
        makeMove(board, entry.move(), undo);
        ASSERT_TRUE(isConsistent(board));
        ASSERT_EQ(board.record().repetitions, 0);
        if (depth > 1) checkAllMoves(board, depth - 1);
        const Key key = board.record().key;
        unmakeMove(board, entry.move(), undo);
        board.perftKeys[board.perftPly] = board.record().key;  // the deeper check has set its own
        ASSERT_TRUE(positionBytes(board) == before);

        // The counting pair leads to the same position, but for the clock and the sums.
        makeMovePerft(board, entry.move(), undo);
        ASSERT_EQ(board.perftKeys[board.perftPly], key);
        ASSERT_EQ(board.fullKey(), key);
        unmakeMovePerft(board, entry.move(), undo);
        ASSERT_TRUE(positionBytes(board) == before);
        if (testing::Test::HasFatalFailure()) return;
    }
}

TEST(MakeMove, UnmakeRestoresEveryByte) {
    for (const char* fen : richPositions) {
        checkAllMoves(*boardOf(fen), 2);
        checkAllMoves(*boardOf(mirroredFEN(fen)), 2);
    }
    for (const char* fen : oddPositions) {
        checkAllMoves(*boardOf(fen), 2);
    }
}

TEST(MakeMove, KeysSumsAndListsHoldOverWholeGames) {
    TestRandom random(2);
    std::vector<const char*> starts(std::begin(richPositions), std::end(richPositions));
    starts.insert(starts.end(), std::begin(oddPositions), std::end(oddPositions));
    for (int game = 0; game < 48; ++game) {
        const auto board = boardOf(starts[game % starts.size()]);
        const std::string start = positionBytes(*board);
        std::vector<std::pair<Move, UndoRecord>> line;
        for (int ply = 0; ply < 150; ++ply) {
            MoveList list;
            generateLegalMoves(*board, list);
            if (list.count == 0) break;
            line.push_back({list.moves[random.below(list.count)].move(), {}});
            makeMove(*board, line.back().first, line.back().second);
            ASSERT_TRUE(isConsistent(*board)) << board->toFEN();
        }
        for (; !line.empty(); line.pop_back()) {
            unmakeMove(*board, line.back().first, line.back().second);
        }
        ASSERT_TRUE(positionBytes(*board) == start);
    }
}

TEST(MakeMove, GivesTheRightPosition) {
    struct Case {
        const char* why;
        const char* before;
        const char* move;
        const char* after;
    };
    const Case cases[] = {
        {"double step beside an enemy pawn", "4k3/8/8/8/3p4/8/4P3/4K3 w - - 5 1", "e2e4",
         "4k3/8/8/8/3pP3/8/8/4K3 b - e3 0 1"},
        {"double step with no enemy pawn beside", "4k3/8/8/3p4/8/8/4P3/4K3 w - - 5 1", "e2e4",
         "4k3/8/8/3p4/4P3/8/8/4K3 b - - 0 1"},
        {"double step beside a pawn across the edge", "4k3/8/7p/8/7p/8/P7/4K3 w - - 0 1", "a2a4",
         "4k3/8/7p/8/P6p/8/8/4K3 b - - 0 1"},
        {"the chance to capture en passant passes", "4k3/8/8/8/3pP3/8/8/4K3 b - e3 0 1", "e8d8",
         "3k4/8/8/8/3pP3/8/8/4K3 w - - 1 1"},
        {"en passant", "4k3/8/8/8/3pP3/8/8/4K3 b - e3 0 1", "d4e3",
         "4k3/8/8/8/8/4p3/8/4K3 w - - 0 1"},
        {"castling counts on the clock", "r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 3 1", "e1g1",
         "r3k2r/8/8/8/8/8/8/R4RK1 b kq - 4 1"},
        {"castling to the queen side", "r3k2r/8/8/8/8/8/8/R3K2R b KQkq - 3 1", "e8c8",
         "2kr3r/8/8/8/8/8/8/R3K2R w KQ - 4 1"},
        {"rook takes rook at home", "r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 3 1", "h1h8",
         "r3k2R/8/8/8/8/8/8/R3K3 b Qq - 0 1"},
        {"a promotion takes the rook at home", "r3k2r/8/8/8/8/8/1p6/R3K2R b KQkq - 3 1", "b2a1n",
         "r3k2r/8/8/8/8/8/8/n3K2R w Kkq - 0 1"},
        {"a king steps", "r3k2r/8/8/8/8/8/8/R3K2R b KQkq - 3 1", "e8e7",
         "r6r/4k3/8/8/8/8/8/R3K2R w KQ - 4 1"},
        {"a rook steps", "r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 3 1", "a1b1",
         "r3k2r/8/8/8/8/8/8/1R2K2R b Kkq - 4 1"},
        {"a pawn moves", "4k3/8/8/8/8/8/4P3/4K3 w - - 9 1", "e2e3",
         "4k3/8/8/8/8/4P3/8/4K3 b - - 0 1"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        const auto board = boardOf(c.before);
        UndoRecord undo;
        const Move move = findMove(*board, c.move);
        ASSERT_NE(move, NoMove);
        makeMove(*board, move, undo);
        EXPECT_EQ(board->toFEN(), c.after);
    }
}

TEST(MakeMove, ASecondQueenStandsInThePawnsSlot) {
    const auto board = boardOf("3nk3/4P3/8/8/8/8/P7/3QK3 w - - 0 1");
    const int slot = board->slotOn[E7];
    UndoRecord undo;
    const Move move = findMove(*board, "e7d8q");
    makeMove(*board, move, undo);
    EXPECT_EQ(board->slotOn[D8], slot);
    EXPECT_EQ(board->pieceLists[White].counts[PieceList::Surplus], 1);
    EXPECT_EQ(board->count(White, Queen), 2);
    unmakeMove(*board, move, undo);
    EXPECT_EQ(board->slotOn[E7], slot);
    EXPECT_EQ(board->pieceLists[White].counts[PieceList::Surplus], 0);
}

TEST(MakeMove, TheClockStaysAtTheEndOfItsRange) {
    const auto board = boardOf("4k3/8/8/8/8/8/8/R3K2R w KQ - 254 200");
    for (const char* text : {"e1g1", "e8d8", "a1a2"}) {
        UndoRecord undo;
        makeMove(*board, findMove(*board, text), undo);
        EXPECT_EQ(board->halfmoveClock, 255);
    }
}

TEST(MakeMove, ANullMoveChangesOnlyTheSideTheClockAndEnPassant) {
    const auto board = boardOf("4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 1");
    const std::string before = positionBytes(*board);
    NullUndo undo;
    makeNullMove(*board, undo);
    EXPECT_TRUE(isConsistent(*board));
    EXPECT_EQ(board->toFEN(), "4k3/8/8/3pP3/8/8/8/4K3 b - - 0 1");
    unmakeNullMove(*board, undo);
    EXPECT_TRUE(positionBytes(*board) == before);
}

}  // namespace
}  // namespace vatro
