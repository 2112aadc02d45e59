// eval/print_evaluation.h - the evaluation of a position as a table of its terms.
#pragma once

#include <string>

#include "board/board.h"
#include "eval/pawn_hash.h"

namespace vatro {

/// The lines of the table, each ended by a newline. Evaluates with the full window, which may
/// store a pawn structure; what is stored already shows as one sum, not by its terms.
std::string evaluationText(const Board_0x88& board, PawnHashTable& pawnHash);

}  // namespace vatro
