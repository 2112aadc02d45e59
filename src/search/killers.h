// search/killers.h - remembering quiet moves that cut off.
#pragma once

#include "board/board.h"
#include "board/move_ordering.h"

namespace vatro {

/// Remembers a move that caused a cutoff at the current record, if it is quiet. Nothing else is
/// tested: a move that cuts off twice in a row takes both slots.
inline void updateKillers(Board_0x88& board, Move move) {
    if (!isQuiet(board, move)) return;
    PlyRecord& record = board.record();
    record.killers[1] = record.killers[0];
    record.killers[0] = move;
}

}  // namespace vatro
