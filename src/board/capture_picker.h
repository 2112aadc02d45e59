// board/capture_picker.h - hands out the captures of a position that is not in check, best first.
//
// Captures that gain too little for the search are not even generated: the order of the others does
// not depend on them. The board must be the same at every call of `next`.
#pragma once

#include <climits>
#include <utility>

#include "board/attacks.h"
#include "board/board.h"
#include "board/legality.h"
#include "board/move_ordering.h"
#include "board/selection_sort.h"

namespace vatro {

class CapturePicker {
  public:
    explicit CapturePicker(const Board_0x88& position) : board(position) {}

    /// A capture or promotion to hand out before all others; NoMove for none. It is tested before
    /// it is handed out, so it may come from a line that belongs to another position.
    void prefer(Move move) { preferred = untested = move; }

    /// The next capture or promotion to a queen, NoMove at the end. What gains no more than `least`
    /// centipawns may be left out; `least` must not rise from call to call.
    template <Colour Us>
    Move next(int least);

  private:
    /// Makes the list anew, with what gains more than `least`, up to the move handed out last.
    template <Colour Us>
    void generate(int least);
    /// Promotions and en passant do not gain what stands on their target.
    template <Colour Us>
    bool hasOddGains() const {
        constexpr SquareMask seventhRank = SquareMask{0xFF} << (8 * Side<Us>::SeventhRank);
        return board.epSquare != NoSquare || (board.pieceMask[Us][Pawn] & seventhRank);
    }

    MoveList list;
    const Board_0x88& board;
    unsigned current = 0;
    int mostLeftOut = INT_MAX;  // no capture that the list lacks gains more
    Move preferred = NoMove;
    Move untested = NoMove;  // the preferred move, before the first call
    Move latest = NoMove;    // taken from the list
};

template <Colour Us>
inline Move CapturePicker::next(int least) {
    if (const Move move = std::exchange(untested, NoMove)) {
        if (isValidMove(board, move) && isLegal(board, move, computePins<Us>(board, 0)))
            return move;
        preferred = NoMove;
    }
    if (least < mostLeftOut) generate<Us>(least);
    while (current < list.count) {
        latest = selectBest(list, current++);
        if (!preferred || !sameMove(latest, preferred)) return latest;
    }
    return NoMove;
}

template <Colour Us>
inline void CapturePicker::generate(int least) {
    const bool wantsAll = latest || hasOddGains<Us>();
    const Victims victims = victimsAbove<Us>(board, wantsAll ? INT_MIN : least);
    mostLeftOut = victims.mostLeftOut;
    if (!victims.squares && !wantsAll) return;
    list.count = current = 0;
    generateCaptures<Us>(board, computePins<Us>(board, 0), victims.squares, list);
    if (!latest) return;
    while (current < list.count && selectBest(list, current++) != latest) {
    }
}

}  // namespace vatro
