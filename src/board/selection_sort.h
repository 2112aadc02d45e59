// board/selection_sort.h - a whole move list in the order in which MovePicker selects its moves.
#pragma once

#include "board/move.h"

namespace vatro {

/// Sorts the list as if MovePicker::selectBest had handed it out move by move. It is the faster way
/// when most of the moves will be asked for.
void sortAsSelected(MoveList& list);

}  // namespace vatro
