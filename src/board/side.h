// src/board/side.h - everything in which the two sides differ.
//
// The rules are written once, as templates on the side to move; a routine that needs one more
// difference adds it here, so that a twin cannot drift.
#pragma once

#include "board/types.h"

namespace vatro {

template <Colour Us>
struct Side {
    static constexpr Colour Them = Us == White ? Black : White;
    static constexpr int Up = Us == White ? 16 : -16;             // one rank forward, 0x88 offset
    static constexpr int CaptureFirst = Us == White ? 15 : -15;   // pawn captures, in the order
    static constexpr int CaptureSecond = Us == White ? 17 : -17;  // in which they are generated
    static constexpr int DoubleStepRank = Us == White ? 1 : 6;    // rank index of the double step
    static constexpr int SeventhRank = Us == White ? 6 : 1;  // rank index one step from promotion
    static constexpr int HomeRank = Us == White ? 0 : 7;     // rank index of the pieces
    static constexpr CastlingRight KingSide = Us == White ? WhiteKingSide : BlackKingSide;
    static constexpr CastlingRight QueenSide = Us == White ? WhiteQueenSide : BlackQueenSide;
    static constexpr Square KingHome = Us == White ? E1 : E8;

    /// Rank index as this side counts: 0 is its own first rank.
    static constexpr int relativeRank(int rank) { return Us == White ? rank : 7 - rank; }
    /// The square of this side that corresponds to one of White's first rank.
    static constexpr Square home(Square first) { return Us == White ? first : first + A8; }
};

}  // namespace vatro
