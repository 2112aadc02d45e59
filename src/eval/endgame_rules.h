// eval/endgame_rules.h - how much of a score counts: the fifty-move clock and hard endings.
#pragma once

#include <algorithm>

#include "board/board.h"
#include "eval/material.h"

namespace vatro {

constexpr int FullScale = 100;    // percent
constexpr int EndgamePieces = 4;  // the rules know endings of so many pieces, kings included

/// The percentage of the score that an ending hard or impossible to win is worth; FullScale for
/// all others. Only positions of four pieces are examined.
int endgameRule(const Board_0x88& board);

/// The percentage, 0 to 100, by which the score is multiplied; 0 when nobody can win.
inline int scaleFactor(const Board_0x88& board, const MaterialInfo& material) {
    if (!material.canWin[White] && !material.canWin[Black]) return 0;
    const int clock =
        std::min<int>(board.halfmoveClock, 100);  // falls from 100% to 0 with its square
    const int fiftyScale = (100 * 100 - clock * clock) / 100;
    if (board.totalCount() > EndgamePieces) [[likely]]
        return fiftyScale;
    return std::min(endgameRule(board), fiftyScale);
}

}  // namespace vatro
