// board/legality.h - can a move from elsewhere (a table, a line, a book) be played here?
#pragma once

#include "board/attacks.h"
#include "board/board.h"

namespace vatro {

/// True when the generator could produce `move` here, if the safety of the king is left aside. Any
/// move word may be asked about. A move that passes isLegal too can be played.
bool isValidMove(const Board_0x88& board, Move move);

/// True when `move`, which passes isValidMove, does not leave the mover's king attacked. `info` is
/// that of the position.
bool isLegal(const Board_0x88& board, Move move, const PinInfo& info);

}  // namespace vatro
