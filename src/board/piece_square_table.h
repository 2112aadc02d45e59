// board/piece_square_table.h - what a piece is worth for standing where it stands.
//
// The evaluation gives these values their meaning; they live here because the board keeps their
// sums up to date with every move.
#pragma once

#include "board/score_sum.h"
#include "board/types.h"

namespace vatro {

struct PieceSquareTable {
    ScoreSum values[ColourCount][PieceKindCount][64];  // by colour, kind and Square64

    constexpr ScoreSum at(Colour colour, PieceType type, Square64 square) const {
        return values[colour][kindOf(type)][square];
    }
};
extern const PieceSquareTable pieceSquareTable;

}  // namespace vatro
