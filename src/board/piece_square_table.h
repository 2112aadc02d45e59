// src/board/piece_square_table.h - what a piece is worth for standing where it stands.
//
// The evaluation gives these values their meaning; they live here because the board keeps their
// sums up to date with every move.
#pragma once

#include "board/types.h"

namespace vatro {

struct PieceSquareTable {
    ScorePair values[ColourCount][6][64];  // by colour, piece type - 1 and sq64

    constexpr ScorePair at(Colour colour, PieceType type, int sq64) const {
        return values[colour][type - 1][sq64];
    }
};
extern const PieceSquareTable pieceSquareTable;

}  // namespace vatro
