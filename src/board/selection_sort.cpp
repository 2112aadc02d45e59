// board/selection_sort.cpp - selection, worked out for the whole list at once.
#include "board/selection_sort.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>

namespace vatro {
namespace {

/// Places of moves in the unsorted list: bit n stands for place n.
using Places = std::uint64_t;
constexpr unsigned MostPlaces = 64;

constexpr Places placeBit(unsigned place) { return Places{1} << place; }
constexpr unsigned countBelow(Places places, unsigned place) {
    return static_cast<unsigned>(std::popcount(places & (placeBit(place) - 1)));
}

/// Puts the first move of a queue at its end, so many times.
void turn(ScoredMove* first, ScoredMove* end, unsigned times) {
    const auto size = static_cast<unsigned>(end - first);
    if (size == 2) {  // most queues; no branch asks whether they change
        const ScoredMove pair[] = {first[0], first[1]};
        first[0] = pair[times % 2];
        first[1] = pair[(times + 1) % 2];
    } else if (size > 2) {
        std::rotate(first, first + times % size, end);
    }
}

/// Ascending keys: the best score first, equal scores as they stand in the list.
int sortKey(const ScoredMove& entry, unsigned place) {
    return -entry.score() * 256 + static_cast<int>(place);
}
static_assert(MostPlaces <= 256);

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
    if (count > MostPlaces) {  // hardly ever
        for (unsigned place = 0; place < count; ++place)
            selectBest(list, place);
        return;
    }
    int keys[MostPlaces];
    for (unsigned i = 0; i < count; ++i) {
        keys[i] = sortKey(list.moves[i], i);
    }
    constexpr unsigned Lanes = 8;  // the ranks are counted in whole vectors
    static_assert(MostPlaces % Lanes == 0);
    const unsigned padded = (count + Lanes - 1) / Lanes * Lanes;
    std::fill(keys + count, keys + padded, std::numeric_limits<int>::max());

    ScoredMove sorted[MostPlaces];
    std::uint8_t places[MostPlaces];  // in the unsorted list
    for (unsigned i = 0; i < count; ++i) {
        int rank = 0;
        for (unsigned j = 0; j < padded; ++j) {
            rank += keys[j] < keys[i];
        }
        sorted[rank] = list.moves[i];
        places[rank] = static_cast<std::uint8_t>(i);
    }

    const auto haveOneScore = [&](unsigned rank, unsigned next) {
        return next < count && sorted[next].score() == sorted[rank].score();
    };
    Places better = 0;  // of all moves with a better score
    for (unsigned first = 0, end; first < count; first = end) {
        Places equal = placeBit(places[first]);
        end = first + 1;
        if (haveOneScore(first, end)) {
            unsigned selections = countBelow(better, places[first]);
            for (; haveOneScore(first, end); ++end) {
                const unsigned joinsAfter = countBelow(better, places[end]);
                turn(sorted + first, sorted + end, joinsAfter - selections);
                selections = joinsAfter;
                equal |= placeBit(places[end]);
            }
            turn(sorted + first, sorted + end, first - selections);  // `first` moves are better
        }
        better |= equal;
    }
    std::copy_n(sorted, count, list.moves);
}

}  // namespace vatro
