// book/book_key.cpp - the key under which a Polyglot book knows a position.
#include <bit>

#include "book/polyglot_book.h"
#include "book/random64.h"

namespace vatro {

Key bookKey(const Board_0x88& board) {
    Key key = 0;
    for (const Colour colour : {White, Black}) {
        for (int type = Pawn; type <= King; ++type) {
            const int kind = 2 * (type - Pawn) + (colour == White ? 1 : 0);
            for (SquareMask rest = board.pieceMask[colour][type]; rest; rest &= rest - 1) {
                key ^= random64[BookPieceKeys + 64 * kind + lowestSquare(rest)];
            }
        }
    }
    // CastlingRight lists the rights in the order of the format.
    for (unsigned rights = board.castlingRights; rights; rights &= rights - 1) {
        key ^= random64[BookCastlingKeys + std::countr_zero(rights)];
    }
    if (board.epSquare != NoSquare) key ^= random64[BookEnPassantKeys + fileOf(board.epSquare)];
    if (board.sideToMove == White) key ^= random64[BookTurnKey];
    return key;
}

}  // namespace vatro
