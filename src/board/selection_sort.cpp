// board/selection_sort.cpp - selection, worked out for the whole list at once.
#include "board/selection_sort.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>

namespace vatro {
namespace {

/// A set of places in a move list.
class PlaceSet {
  public:
    void add(unsigned place) { words[place / 64] |= std::uint64_t{1} << (place % 64); }
    unsigned countBelow(unsigned place) const {
        const std::uint64_t below = (std::uint64_t{1} << (place % 64)) - 1;
        int count = std::popcount(words[place / 64] & below);
        for (unsigned word = 0; word < place / 64; ++word) {
            count += std::popcount(words[word]);
        }
        return static_cast<unsigned>(count);
    }

  private:
    std::uint64_t words[MoveList::Capacity / 64 + 1] = {};
};

/// Puts the first move of a queue at its end, so many times.
void turn(ScoredMove* first, ScoredMove* end, unsigned times) {
    const auto size = static_cast<unsigned>(end - first);
    if (size > 1 && times % size != 0) std::rotate(first, first + times % size, end);
}

/// Ascending keys: the best score first, equal scores as they stand in the list.
int sortKey(const ScoredMove& entry, unsigned place) {
    return -entry.score * 256 + static_cast<int>(place);
}
static_assert(MoveList::Capacity < 256);

}  // namespace

// One selection scans the list; each better move that it meets changes places with the best so far,
// and the last of them is handed out. For the moves of one score this means:
// - Those without a better move before them form a queue. When a better move is selected, the
//   queue's first move goes to a place behind the rest of the queue: the queue turns by one.
// - A selection takes one better move from before each of the others. A move with n better moves
//   before it therefore joins the end of the queue after n selections.
// So the moves are sorted by score, and then each score's queue is turned as often as its moves
// would have seen better ones go.
void sortAsSelected(MoveList& list) {
    const unsigned count = list.count;
    int keys[MoveList::Capacity + 1];
    for (unsigned i = 0; i < count; ++i) {
        keys[i] = sortKey(list.moves[i], i);
    }
    constexpr unsigned Lanes = 8;  // the ranks are counted in whole vectors
    static_assert((MoveList::Capacity + 1) % Lanes == 0);
    const unsigned padded = (count + Lanes - 1) / Lanes * Lanes;
    std::fill(keys + count, keys + padded, std::numeric_limits<int>::max());

    ScoredMove sorted[MoveList::Capacity];
    std::uint8_t places[MoveList::Capacity];  // in the unsorted list
    for (unsigned i = 0; i < count; ++i) {
        int rank = 0;
        for (unsigned j = 0; j < padded; ++j) {
            rank += keys[j] < keys[i];
        }
        sorted[rank] = list.moves[i];
        places[rank] = static_cast<std::uint8_t>(i);
    }

    PlaceSet better;  // the places of all moves with a better score
    for (unsigned first = 0, end; first < count; first = end) {
        end = first + 1;
        while (end < count && sorted[end].score == sorted[first].score)
            ++end;
        if (end > first + 1) {
            unsigned selections = better.countBelow(places[first]);
            for (unsigned i = first + 1; i < end; ++i) {
                const unsigned joinsAfter = better.countBelow(places[i]);
                turn(sorted + first, sorted + i, joinsAfter - selections);
                selections = joinsAfter;
            }
            turn(sorted + first, sorted + end, first - selections);  // `first` moves are better
        }
        for (unsigned i = first; i < end; ++i)
            better.add(places[i]);
    }
    std::copy_n(sorted, count, list.moves);
}

}  // namespace vatro
