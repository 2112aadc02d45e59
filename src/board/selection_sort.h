// board/selection_sort.h - the order in which a move list is handed out: best first, by selection.
#pragma once

#include <utility>

#include "board/move.h"

namespace vatro {

/// Swaps the best of the moves from `place` on to that place: every strictly better one that the
/// scan meets changes places with it, so the order of equal moves follows from the swaps. It does
/// not depend on worse moves, which are only ever moved out of the way.
inline Move selectBest(MoveList& list, unsigned place) {
    ScoredMove* const front = list.moves + place;
    ScoredMove best = *front;
    for (ScoredMove* entry = front + 1; entry != list.moves + list.count; ++entry) {
        if (entry->score() > best.score()) std::swap(best, *entry);
    }
    *front = best;
    return best.move();
}

/// Sorts the list as if it had been selected move by move. It is the faster way when most of the
/// moves will be asked for.
void sortAsSelected(MoveList& list);

}  // namespace vatro
