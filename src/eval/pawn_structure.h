// eval/pawn_structure.h - isolated, doubled, backward and passed pawns; open and half-open files.
//
// These depend on the pawns alone and are kept in the pawn hash.
#pragma once

#include "board/board.h"
#include "board/score_sum.h"
#include "eval/pawn_hash.h"

namespace vatro {

/// Computes the structure of the board's pawns. `weakPawns` receives the terms by colour.
PawnStructure computePawnStructure(const Board_0x88& board, ScoreSum (&weakPawns)[ColourCount]);

}  // namespace vatro
