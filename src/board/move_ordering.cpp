// src/board/move_ordering.cpp - scores of moves and the losing-capture test.
#include "board/move_ordering.h"

#include "board/geometry.h"
#include "board/piece_square_table.h"
#include "board/side.h"

namespace vatro {
namespace {

// By piece type, NoPiece to King. Tuned; no derivation.
constexpr int orderingValue[PieceTypeCount] = {0, 1, 2, 2, 3, 4, 5};
constexpr int captureValue[PieceTypeCount] = {0, 125, 400, 400, 600, 1125, 0};
constexpr int coarseValue[PieceTypeCount] = {0, 1, 3, 3, 4, 5, 0};

constexpr int GoodCaptureBonus = 1000;
constexpr int BadCaptureMalus = 50;
constexpr int KillerBonus = 150;

struct Killers {
    Move moves[4];

    bool contain(Move move) const {
        // A quiet move is no promotion, nor is a killer: the squares decide.
        for (const Move killer : moves) {
            if (((killer ^ move) & 0xFFF) == 0) return true;
        }
        return false;
    }
};

/// The killers of this ply and of the next one of the same side.
Killers killersOf(const Board_0x88& board) {
    const PlyRecord& now = board.record();
    Killers killers = {{now.killers[0], now.killers[1], NoMove, NoMove}};
    if (board.ply + 2 < PlyRecordCount) {
        const PlyRecord& next = board.plyRecords[board.ply + 2];
        killers.moves[2] = next.killers[0];
        killers.moves[3] = next.killers[1];
    }
    return killers;
}

}  // namespace

template <Colour Us>
bool isBadCapture(const Board_0x88& board, Move move, int& gain) {
    using S = Side<Us>;
    switch (typeOf(move)) {
        case Castling:
            return false;
        case EnPassant:
            gain = captureValue[Pawn];
            return false;
        case Promotion:
            gain = captureValue[promotionPiece(move)] - captureValue[Pawn];
            return false;
        case Normal:
            break;
    }
    const PieceType victim = board.pieceAt(toSquareOf(move));
    const PieceType mover = board.pieceAt(fromSquare(move));
    gain = captureValue[victim];
    if (coarseValue[victim] >= coarseValue[mover]) return false;
    const int to = to64(move);
    const SquareMask* theirs = board.pieceMask[S::Them];
    if (pawnAttacks[Us][to] & theirs[Pawn]) return true;
    const bool knightDefends = knightAttacks[to] & theirs[Knight];
    if (victim == Pawn && (mover == Rook || mover == Queen)) return knightDefends;
    return mover == Queen && victim != Queen && knightDefends;
}

bool isBadCapture(const Board_0x88& board, Move move, int& gain) {
    return board.sideToMove == White ? isBadCapture<White>(board, move, gain)
                                     : isBadCapture<Black>(board, move, gain);
}

template <Colour Us>
void scoreMoves(const Board_0x88& board, MoveList& list) {
    const Killers killers = killersOf(board);
    for (unsigned i = 0; i < list.count; ++i) {
        const Move move = list.moves[i].move;
        const PieceType mover = board.pieceAt(fromSquare(move));
        const PieceType victim = board.pieceAt(toSquareOf(move));
        int score = -orderingValue[mover];
        if (isQuiet(board, move)) {
            score += killers.contain(move)
                         ? KillerBonus
                         : pieceSquareTable.at(Us, mover, to64(move)).mg -
                               pieceSquareTable.at(Us, mover, from64(move)).mg;
        } else {
            if (typeOf(move) == EnPassant) {
                score += 64;
            } else {
                const PieceType into = isPromotion(move) ? promotionPiece(move) : NoPiece;
                score += (orderingValue[into] + 8 * orderingValue[victim]) * 8;
            }
            int gain = 0;
            score += isBadCapture<Us>(board, move, gain) ? -BadCaptureMalus : GoodCaptureBonus;
        }
        list.moves[i].score = static_cast<std::int16_t>(score);
    }
}

void scoreCaptures(const Board_0x88& board, MoveList& list) {
    for (unsigned i = 0; i < list.count; ++i) {
        const Move move = list.moves[i].move;
        const PieceType victim = board.pieceAt(toSquareOf(move));
        int score = -orderingValue[board.pieceAt(fromSquare(move))];
        if (typeOf(move) == EnPassant) {
            score += 64;
        } else if (isPromotion(move)) {
            score += 8 * (8 * orderingValue[victim] + orderingValue[promotionPiece(move)]);
        } else {
            score += 64 * orderingValue[victim];
        }
        list.moves[i].score = static_cast<std::int16_t>(score);
    }
}

template bool isBadCapture<White>(const Board_0x88&, Move, int&);
template bool isBadCapture<Black>(const Board_0x88&, Move, int&);
template void scoreMoves<White>(const Board_0x88&, MoveList&);
template void scoreMoves<Black>(const Board_0x88&, MoveList&);

}  // namespace vatro
