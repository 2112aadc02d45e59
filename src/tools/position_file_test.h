// tools/position_file_test.h - loading every position of a text file, one FEN a line.
#pragma once

#include "board/board.h"
#include "tools/stop_check.h"

namespace vatro {

/// Sets the board from each line and reports the lines that are refused. Leaves the last line's
/// position, possibly an unfinished one, on the board. False when there is no regular file
/// or it cannot be opened; the board is then untouched and the fault has been printed.
[[nodiscard]] bool runPositionFileTest(Board_0x88& board, const char* path, StopCheck& stop);

}  // namespace vatro
