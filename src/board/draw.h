// board/draw.h - draws by rule: fifty moves, insufficient material, repetition.
#pragma once

#include "board/board.h"

namespace vatro {

enum class DrawReason {
    None,  // not drawn by rule
    FiftyMoves,
    InsufficientMaterial,
    ThirdOccurrence,
};

/// True when the position is drawn by `reason`, or when it has occurred once before: the search
/// counts that as a draw too, the game does not, and `reason` is None. Notes the number of earlier
/// occurrences in the current record. Does not look for mate, which would come first.
bool isDraw(Board_0x88& board, DrawReason& reason);

}  // namespace vatro
