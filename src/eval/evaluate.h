// eval/evaluate.h - the static evaluation of a position.
#pragma once

#include <cstdint>

#include "board/board.h"
#include "eval/breakdown.h"
#include "eval/endgame_rules.h"
#include "eval/material.h"
#include "eval/pawn_hash.h"

namespace vatro {

/// The score for the side to move. Any thread, each with its own board; `pawnHash` may be shared
/// and must have memory; a hit in it is counted in the caller's `pawnHashHits`. A score that is
/// clearly outside `alpha` .. `beta` may be an estimate, outside too.
int evaluate(const Board_0x88& board,
             PawnHashTable& pawnHash,
             std::uint64_t& pawnHashHits,
             int alpha,
             int beta);

/// The same by the same code with the full window; notes every term in `breakdown`.
int evaluateWithBreakdown(const Board_0x88& board,
                          PawnHashTable& pawnHash,
                          EvalBreakdown& breakdown);

}  // namespace vatro
