// book/book_move.cpp - from the moves of a Polyglot book to move words.
#include "book/book_move.h"

#include "board/attacks.h"
#include "board/legality.h"
#include "board/side.h"

namespace vatro {
namespace {

constexpr unsigned LastPromotionCode = 4;  // queen; fixed by the Polyglot format

bool isPieceAt(const Board_0x88& board, Square square, PieceType type, Colour colour) {
    return board.pieceOn[square] == type && board.colourOn[square] == colour;
}

/// The castling move of `Us` that a king's move from its home stands for, or NoMove.
template <Colour Us>
Move castlingMove(const Board_0x88& board, Square from, Square to) {
    using S = Side<Us>;
    if (from != S::KingHome || !isPieceAt(board, from, King, Us)) return NoMove;
    const auto castlesTo = [&](Square rook, Square target) {
        return (to == rook || to == target) && isPieceAt(board, rook, Rook, Us);
    };
    if (castlesTo(S::home(H1), S::home(G1))) {
        return makeMoveWord(from, S::home(G1), Castling, S::KingSideCastling);
    }
    if (castlesTo(S::home(A1), S::home(C1))) {
        return makeMoveWord(from, S::home(C1), Castling, S::QueenSideCastling);
    }
    return NoMove;
}

template <Colour Us>
bool isDoubleStep(const Board_0x88& board, Square from, Square to) {
    using S = Side<Us>;
    return isPieceAt(board, from, Pawn, Us) && rankOf(from) == S::DoubleStepRank &&
           to == from + 2 * S::Up;
}

/// The move word, not yet checked against the position.
template <Colour Us>
Move translate(const Board_0x88& board, Square from, Square to, unsigned promotion) {
    if (promotion > LastPromotionCode) return NoMove;
    if (promotion > 0) {
        return makePromotion(from, to, static_cast<PieceType>(Knight + promotion - 1));
    }
    if (const Move castling = castlingMove<Us>(board, from, to)) return castling;
    if (to == board.epSquare && board.pieceOn[from] == Pawn) {
        return makeMoveWord(from, to, EnPassant);
    }
    return makeMoveWord(from, to, Normal, isDoubleStep<Us>(board, from, to) ? DoubleStep : 0);
}

}  // namespace

Move fromBookMove(const Board_0x88& board, std::uint16_t bookMove) {
    const Square to = squareAt(bookMove & 7, (bookMove >> 3) & 7);
    const Square from = squareAt((bookMove >> 6) & 7, (bookMove >> 9) & 7);
    const unsigned promotion = (bookMove >> 12) & 7;
    const Move move = board.sideToMove == White ? translate<White>(board, from, to, promotion)
                                                : translate<Black>(board, from, to, promotion);
    const bool playable = isValidMove(board, move) && isLegal(board, move, computePins(board));
    return playable ? move : NoMove;
}

}  // namespace vatro
