// eval/pawnless.h - positions without pawns: drive the weaker king to the edge and follow it.
#pragma once

#include "board/board.h"
#include "eval/material.h"

namespace vatro {

/// The score for the side to move of a position without pawns, neither clamped nor scaled.
/// Breakdown: EvalBreakdown or NoBreakdown.
template <typename Breakdown>
int pawnlessEvaluation(const Board_0x88& board, const MaterialInfo& material, Breakdown& breakdown);

}  // namespace vatro
