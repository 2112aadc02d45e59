// eval/evaluate.h - the static evaluation of a position.
#pragma once

#include <cstdint>

#include "base/counter.h"
#include "board/board.h"
#include "eval/breakdown.h"
#include "eval/endgame_rules.h"
#include "eval/lead_cache.h"
#include "eval/material.h"
#include "eval/pawn_hash.h"

namespace vatro {

/// What a thread keeps from one evaluation to the next. It saves time only: scores do not depend on
/// it.
struct EvalMemory {
    PawnHashTable& pawnHash;  // shared by all threads; must have memory
    Counter& pawnHashHits;    // counted here
    MaterialTable materials = {};
    LeadCache leads = {};
};

/// The score for the side to move. Any thread, each with its own board and memory. A score that is
/// clearly outside `alpha` .. `beta` may be an estimate, outside too.
int evaluate(const Board_0x88& board, EvalMemory& memory, int alpha, int beta);

/// The same by the same code with the full window; notes every term in `breakdown`.
int evaluateWithBreakdown(const Board_0x88& board, EvalMemory& memory, EvalBreakdown& breakdown);

}  // namespace vatro
