// tools/random_positions.h - random positions that a game of chess could plausibly have reached.
#pragma once

#include <string>

#include "base/random.h"
#include "board/board.h"
#include "tools/stop_check.h"

namespace vatro {

/// Draws a position and sets it on the board: one king each, the side not to move
/// not in check, counts of pieces that promotions explain, pawns where captures can have led them,
/// castling rights and en-passant square true to the board.
void setupRandomPosition(Board_0x88& board, Random& random);

/// The FEN of a random position: six fields, without a newline.
std::string randomPositionFEN(Random& random);

/// Writes `count` (1 or more) random positions, one FEN a line, to the file at `path`, replacing
/// it, or to standard output when `path` is nullptr. A run that is stopped writes fewer, at least
/// one. False when the file cannot be opened or written; the fault has been printed.
[[nodiscard]] bool writeRandomPositions(int count,
                                        const char* path,
                                        Random& random,
                                        StopCheck& stop);

}  // namespace vatro
