// tests/board/attacks_test.cpp - attacks and legality, held against slower definitions of the same.
#include "board/attacks.h"

#include <set>

#include "board/legality.h"
#include "support.h"

namespace vatro {
namespace {

/// Walks from the square as a piece would; knows nothing of masks.
bool isAttackedByWalking(const Board_0x88& board, Square square, Colour by) {
    const auto holds = [&](Square where, PieceType type) {
        return isOnBoard(where) && board.pieceOn[where] == type && board.colourOn[where] == by;
    };
    const int behind = by == White ? -16 : 16;
    if (holds(square + behind - 1, Pawn) || holds(square + behind + 1, Pawn)) return true;
    for (const int offset : knightOffsets) {
        if (holds(square + offset, Knight)) return true;
    }
    for (const int direction : kingNeighbours) {
        if (holds(square + direction, King)) return true;
        Square where = square + direction;
        while (isOnBoard(where) && board.pieceOn[where] == NoPiece) {
            where += direction;
        }
        const bool straight =
            direction == 1 || direction == -1 || direction == 16 || direction == -16;
        if (holds(where, straight ? Rook : Bishop) || holds(where, Queen)) return true;
    }
    return false;
}

template <typename Check>
void overRandomGames(int games, unsigned plies, Check check) {
    TestRandom random(7);
    for (const char* fen : richPositions) {
        for (int game = 0; game < games; ++game) {
            forEachRandomPosition(fen, plies, random, check);
        }
    }
    for (const char* fen : oddPositions) {
        forEachRandomPosition(fen, plies, random, check);
    }
}

TEST(Attacks, AreWhatAWalkFromTheSquareFinds) {
    overRandomGames(4, 100, [](const Board_0x88& board) {
        for (const Square64 square : allSquares) {
            for (const Colour by : {White, Black}) {
                ASSERT_EQ(isAttacked(board, as88(square), by),
                          isAttackedByWalking(board, as88(square), by))
                    << board.toFEN() << ' ' << squareText(square);
            }
        }
    });
}

TEST(Legality, AcceptsExactlyTheGeneratedMovesOfAllWords) {
    overRandomGames(1, 25, [](const Board_0x88& board) {
        MoveList list;
        generateLegalMoves(board, list);
        std::set<Move> generated;
        for (const ScoredMove& entry : list) {
            generated.insert(entry.move());
        }
        ASSERT_EQ(generated.size(), list.count) << "a move twice: " << board.toFEN();
        const PinInfo info = computePins(board);
        std::set<Move> accepted;
        for (unsigned word = 0; word <= 0xFFFF; ++word) {
            const auto move = static_cast<Move>(word);
            if (isValidMove(board, move) && isLegal(board, move, info)) accepted.insert(move);
        }
        ASSERT_EQ(accepted, generated) << board.toFEN();
    });
}

TEST(Legality, LegalMeansTheOwnKingIsSafeAfterIt) {
    int legal = 0;
    int illegal = 0;
    overRandomGames(2, 60, [&](const Board_0x88& board) {
        const Colour us = board.toMove();
        if (!board.hasKing(us)) return;
        const PinInfo info = computePins(board);
        const auto copy = std::make_unique<Board_0x88>(board);
        for (unsigned word = 0; word <= 0xFFFF; word += 1 + word % 3) {
            const auto move = static_cast<Move>(word);
            if (!isValidMove(board, move) || typeOf(move) == Castling) continue;
            UndoRecord undo;
            makeMove(*copy, move, undo);
            const bool safe = !isAttackedByWalking(*copy, copy->kingSquare(us), ~us);
            unmakeMove(*copy, move, undo);
            ASSERT_EQ(isLegal(board, move, info), safe) << board.toFEN() << ' ' << moveToText(move);
            ++(safe ? legal : illegal);
        }
    });
    EXPECT_GT(legal, 1000);
    EXPECT_GT(illegal, 1000);
}

}  // namespace
}  // namespace vatro
