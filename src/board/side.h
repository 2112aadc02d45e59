// board/side.h - everything in which the two sides differ.
//
// The rules are written once, as templates on the side to move; a routine that needs one more
// difference adds it here, so that a twin cannot drift.
#pragma once

#include "board/types.h"

namespace vatro {

template <Colour Us>
struct Side {
    static constexpr Colour Them = Us == White ? Black : White;
    static constexpr int Up = Us == White ? 16 : -16;  // one rank forward, 0x88 offset
    // A pawn's two captures, 0x88 offsets, in the order in which they are generated.
    static constexpr int CaptureFirst = Us == White ? 15 : -15;
    static constexpr int CaptureSecond = Us == White ? 17 : -17;
    static constexpr int DoubleStepRank = Us == White ? 1 : 6;  // rank index of the double step
    static constexpr int SeventhRank = Us == White ? 6 : 1;  // rank index one step from promotion
    static constexpr CastlingRight KingSide = Us == White ? WhiteKingSide : BlackKingSide;
    static constexpr CastlingRight QueenSide = Us == White ? WhiteQueenSide : BlackQueenSide;
    static constexpr unsigned Castlings = KingSide | QueenSide;
    static constexpr unsigned KingSideCastling = Us == White ? 0 : 2;  // bits 14-15 of the move
    static constexpr unsigned QueenSideCastling = KingSideCastling + 1;
    static constexpr Square KingHome = Us == White ? E1 : E8;

    /// Rank index as this side counts: 0 is its own first rank.
    static constexpr int relativeRank(int rank) { return Us == White ? rank : 7 - rank; }
    /// The square on this side's first rank that has the file of `first`, a square of rank 1.
    static constexpr Square home(Square first) { return Us == White ? first : first + (A8 - A1); }
};

}  // namespace vatro
