// board/move_picker.h - hands out all legal moves of a node, one at a time, best first.
//
// Preferred moves come before anything is generated; a stage generates only when it is reached.
// The board must be the same at every call of `next`.
#pragma once

#include <algorithm>

#include "board/attacks.h"
#include "board/board.h"
#include "board/legality.h"
#include "board/move_ordering.h"
#include "board/selection_sort.h"

namespace vatro {

/// Hears of a preferred move that cannot be played, before the next move is handed out.
class RefusedMoveListener {
  public:
    virtual void reportRefusedMove(Move move) = 0;

  protected:
    ~RefusedMoveListener() = default;
};

class MovePicker {
  public:
    /// A picker for the side to move, whose pins and checkers are given.
    MovePicker(const Board_0x88& position, const PinInfo& pins) : info(pins), board(position) {}

    /// Moves to hand out before all others; NoMove for none. Each is tested before it is handed
    /// out, so they may come from a table entry or a line that belongs to another position. A
    /// `listener` hears of a second one that fails the test.
    void prefer(Move first, Move second = NoMove, RefusedMoveListener* listener = nullptr) {
        firstMove = first;
        secondMove = second;
        refusalListener = listener;
        if (first || second) stage = Stage::First;
    }

    /// Generates the moves now, for a node that waits for memory meanwhile. Where moves are
    /// preferred afterwards it is done again later, since their search changes the killers.
    template <Colour Us>
    void generateAll() {
        stage = Stage::Selected;
        list.count = 0;
        killers = KillerSet(board);
        generateScoredMoves<Us>(board, info, killers, list);
    }

    /// The next move, NoMove at the end.
    template <Colour Us>
    Move next();

    /// Visits the move that `next` has just given and those of the list that it will probably give
    /// soon; call it after each `next`, and no move of the list is visited twice. The further the
    /// list has come, the more at a time, as a cutoff gets less likely.
    template <typename Visit>
    void announce(Move given, Visit visit) {
        if (stage <= Stage::Generate) return visit(given);
        if (current <= announced) return;
        announced = std::min(list.count, 2 * current + 2);
        for (unsigned i = current - 1; i < announced; ++i) {
            visit(list.moves[i].move());
        }
    }

  private:
    enum class Stage { First, Second, Generate, GoodCaptures, Selected, Sorted };

    bool isPreferred(Move move) const {
        return (firstMove && sameMove(move, firstMove)) ||
               (secondMove && sameMove(move, secondMove));
    }
    /// The best move of the list that has not been handed out, NoMove at its end.
    Move nextSelected();
    /// The same for a sorted list.
    Move nextSorted();
    /// Whether good captures are generated first, and the whole list only if they do not suffice.
    /// Not in check, where there are few moves; nor where the list could overflow, as it would then
    /// lack captures that have been handed out.
    template <Colour Us>
    bool beginsWithGoodCaptures() const {
        constexpr int PawnMoves = 8 * 12;  // each promotes in three ways
        constexpr int OtherMoves = 107;    // queen, pairs of the others, king and castlings
        constexpr int MaxSurplus = 3;      // each at most a queen in place of a pawn
        static_assert(PawnMoves + OtherMoves + MaxSurplus * (27 - 12) < MoveList::Capacity);
        return !info.inCheck() && board.pieceLists[Us].counts[PieceList::Surplus] <= MaxSurplus;
    }

    bool isPlayable(Move move) const {
        return isValidMove(board, move) && isLegal(board, move, info);
    }

    MoveList list;
    KillerSet killers;
    PinInfo info;
    const Board_0x88& board;
    RefusedMoveListener* refusalListener = nullptr;  // the caller's; outlives the picker
    unsigned current = 0;                            // moves of the list that have been handed out
    unsigned announced = 0;                          // moves of the list that have been announced
    Stage stage = Stage::First;
    Move firstMove = NoMove;
    Move secondMove = NoMove;
};

template <Colour Us>
Move MovePicker::next() {
    // Most calls end here, before the switch, whose jump is hard to predict.
    if (stage == Stage::Selected) return nextSelected();
    if (stage == Stage::Sorted) return nextSorted();
    switch (stage) {
        case Stage::First:
            stage = Stage::Second;
            if (firstMove && isPlayable(firstMove)) return firstMove;
            firstMove = NoMove;
            [[fallthrough]];
        case Stage::Second:
            stage = Stage::Generate;
            if (secondMove && !(firstMove && sameMove(firstMove, secondMove))) {
                if (isPlayable(secondMove)) return secondMove;
                if (refusalListener) refusalListener->reportRefusedMove(secondMove);
                secondMove = NoMove;
            }
            [[fallthrough]];
        case Stage::Generate:
            if (!beginsWithGoodCaptures<Us>()) {
                generateAll<Us>();
                return nextSelected();
            }
            stage = Stage::GoodCaptures;
            killers = KillerSet(board);  // the search of the captures will change them
            generateGoodCaptures<Us>(board, info, list);
            [[fallthrough]];
        case Stage::GoodCaptures:
            if (const Move move = nextSelected()) return move;
            stage = Stage::Sorted;
            list.count = 0;
            generateScoredMoves<Us>(board, info, killers, list);
            sortAsSelected(list);  // the captures handed out are the first `current` moves again
            return nextSorted();
        case Stage::Selected:
        case Stage::Sorted:
            break;
    }
    return NoMove;
}

inline Move MovePicker::nextSelected() {
    while (current < list.count) {
        const Move move = selectBest(list, current++);
        if (!isPreferred(move)) return move;
    }
    return NoMove;
}

inline Move MovePicker::nextSorted() {
    while (current < list.count) {
        const Move move = list.moves[current++].move();
        if (!isPreferred(move)) return move;
    }
    return NoMove;
}

}  // namespace vatro
