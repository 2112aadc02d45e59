// src/board/draw.h - draws by rule, and whether the game can go on.
#pragma once

#include "board/board.h"

namespace vatro {

/// Why a position is drawn. The numbers are those of the system's reports.
enum class DrawReason : std::uint32_t {
    None = 0,  // not drawn, or the position has occurred once before
    FiftyMoves = 3,
    InsufficientMaterial = 4,
    ThirdOccurrence = 5,
};

/// True when the position counts as drawn, also at its second occurrence (with reason None). Keeps
/// `repetitions` of the current record. A mate on the board is not looked for.
bool isDraw(Board_0x88& board, DrawReason& reason);

}  // namespace vatro
