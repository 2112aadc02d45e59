// tools/self_test.h - the built-in check of the move generator against known counts.
#pragma once

#include "board/board.h"
#include "tools/perft_hash.h"
#include "tools/stop_check.h"

namespace vatro {

/// Counts every row of the built-in table and prints a line each and a summary. Leaves the last
/// row's position on the board. A run that is stopped leaves out the row that it counts and those
/// behind it. False when there is no memory for the table.
[[nodiscard]] bool runSelfTest(Board_0x88& board, PerftHashTable& table, StopCheck& stop);

}  // namespace vatro
