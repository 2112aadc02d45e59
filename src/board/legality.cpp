// board/legality.cpp - the rules of each piece's moves, and the safety of the king.
//
// The king's safety is tested on square masks alone: the move is made on a copy of the occupied
// squares, never on the board.
#include "board/legality.h"

#include "board/geometry.h"
#include "board/side.h"

namespace vatro {
namespace {

template <Colour Us>
bool isLegalFor(const Board_0x88& board, Move move, const PinInfo& info) {
    constexpr Colour Them = Side<Us>::Them;
    const Square king = board.kingSquare(Us);
    if (king == NoSquare) return true;
    const SquareMask from = maskOf(from64(move));
    const SquareMask to = maskOf(to64(move));
    const bool movesKing = as64(king) == from64(move);
    if (!info.inCheck() && !movesKing && !(info.pinned() & from) && typeOf(move) != EnPassant) {
        return true;
    }
    SquareMask occupied = (board.occupied() & ~from) | to;
    SquareMask taken = to;
    if (typeOf(move) == EnPassant) {
        taken = maskOf(toSquare(move) - Side<Us>::Up);
        occupied &= ~taken;
    }
    const Square64 king64 = movesKing ? to64(move) : as64(king);
    return (attackersOf<Them>(board, king64, occupied) & ~taken) == 0;
}

template <Colour Us>
bool isValidCastling(const Board_0x88& board, Move move) {
    using S = Side<Us>;
    const bool kingSide = extraOf(move) == S::KingSideCastling;
    if (!kingSide && extraOf(move) != S::QueenSideCastling) return false;
    const Square rook = S::home(kingSide ? H1 : A1);
    const Square target = S::home(kingSide ? G1 : C1);
    const Square passed = S::home(kingSide ? F1 : D1);
    return fromSquare(move) == S::KingHome && toSquare(move) == target &&
           (board.castlingRights & (kingSide ? S::KingSide : S::QueenSide)) &&
           (squaresBetween[as64(S::KingHome)][as64(rook)] & board.occupied()) == 0 &&
           !isAttacked(board, S::KingHome, S::Them) && !isAttacked(board, passed, S::Them);
}

template <Colour Us>
bool isValidPawnMove(const Board_0x88& board, Move move) {
    using S = Side<Us>;
    const Square from = fromSquare(move);
    const Square to = toSquare(move);
    const bool promotes = rankOf(from) == S::SeventhRank;
    if (promotes != isPromotion(move)) return false;
    if (!promotes && typeOf(move) != Normal) return false;
    const bool doubleStep = !promotes && extraOf(move) == DoubleStep;
    if (!promotes && !doubleStep && extraOf(move) != 0) return false;
    if (to == from + 2 * S::Up) {
        return doubleStep && rankOf(from) == S::DoubleStepRank &&
               board.pieceOn[from + S::Up] == NoPiece && board.pieceOn[to] == NoPiece;
    }
    if (doubleStep) return false;
    if (to == from + S::Up) return board.pieceOn[to] == NoPiece;
    return (pawnAttacks[Us][as64(from)] & maskOf(to)) && board.colourOn[to] == S::Them;
}

template <Colour Us>
bool isValidFor(const Board_0x88& board, Move move) {
    using S = Side<Us>;
    const Square from = fromSquare(move);
    const Square to = toSquare(move);
    if (from == to || board.colourOn[from] != Us || board.colourOn[to] == Us) return false;
    const PieceType piece = board.pieceAt(from);
    switch (typeOf(move)) {
        case Castling:
            return isValidCastling<Us>(board, move);
        case EnPassant:
            return extraOf(move) == 0 && to == board.epSquare && piece == Pawn &&
                   (pawnAttacks[Us][as64(from)] & maskOf(to)) && board.pieceOn[to] == NoPiece &&
                   board.pieceOn[to - S::Up] == Pawn && board.colourOn[to - S::Up] == S::Them;
        case Normal:
        case Promotion:
            break;
    }
    if (piece == Pawn) return isValidPawnMove<Us>(board, move);
    if (typeOf(move) != Normal || extraOf(move) != 0) return false;
    const Square64 sq64 = as64(from);
    SquareMask reach = 0;
    if (piece == Knight) reach = knightAttacks[sq64];
    if (piece == King) reach = kingAttacks[sq64];
    if (piece == Bishop || piece == Queen) reach |= bishopAttacks(sq64, board.occupied());
    if (piece == Rook || piece == Queen) reach |= rookAttacks(sq64, board.occupied());
    return reach & maskOf(to);
}

}  // namespace

bool isLegal(const Board_0x88& board, Move move, const PinInfo& info) {
    return board.sideToMove == White ? isLegalFor<White>(board, move, info)
                                     : isLegalFor<Black>(board, move, info);
}

bool isValidMove(const Board_0x88& board, Move move) {
    return board.sideToMove == White ? isValidFor<White>(board, move)
                                     : isValidFor<Black>(board, move);
}

}  // namespace vatro
