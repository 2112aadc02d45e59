// book/random64.h - the random numbers that keys of Polyglot books are made of.
//
// They are part of the file format and cannot change. The search has keys of its own
// (board/zobrist.h).
#pragma once

#include "board/types.h"

namespace vatro {

// Where the numbers of each kind begin; fixed by the Polyglot format.
constexpr int BookPieceKeys = 0;        // 64 for each kind of piece: black pawn, white pawn ...
constexpr int BookCastlingKeys = 768;   // one for each right: KQkq
constexpr int BookEnPassantKeys = 772;  // one for each file
constexpr int BookTurnKey = 780;        // when White is to move
constexpr int Random64Count = 781;

extern const Key random64[Random64Count];

}  // namespace vatro
