// src/board/move_picker.h - hands out the moves of a search node, one at a time, best first.
//
// Preferred moves come before anything is generated; a stage generates only when it is reached.
// The board must be the same at every call of `next`.
#pragma once

#include <utility>

#include "board/attacks.h"
#include "board/board.h"
#include "board/move_ordering.h"

namespace vatro {

class MovePicker {
  public:
    /// The rows of the stage table: two preferred moves and all legal moves, or one preferred move
    /// and captures.
    enum class Phase { AllMoves, Captures };

    /// A picker for the side to move, whose pins and checkers are given.
    MovePicker(const Board_0x88& position, const PinInfo& pins, Phase row)
        : info(pins), board(position), phase(row) {}

    /// Moves to hand out before all others; NoMove for none. Each is tested before it is handed
    /// out, so they may come from a table entry or a line that belongs to another position.
    void prefer(Move first, Move second) {
        firstMove = first;
        secondMove = second;
    }

    /// The next move, NoMove at the end.
    template <Colour Us>
    Move next();

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
    /// Good captures are generated first where the full list surely has room for all moves: eight
    /// pawns that all promote in three ways, the other pieces, and up to 15 moves more for a
    /// surplus piece than for the pawn it was make 203 + 3 * 15 < MoveList::Capacity.
    template <Colour Us>
    bool beginsWithGoodCaptures() const {
        constexpr int MaxSurplus = 3;
        return phase == Phase::AllMoves && !info.inCheck() &&
               board.pieceLists[Us].counts[PieceList::Surplus] <= MaxSurplus;
    }

    bool isPlayable(Move move) const {
        return isValidMove(board, move) && isLegal(board, move, info);
    }
    Move selectBest();

    MoveList list;
    KillerSet killers;
    PinInfo info;
    const Board_0x88& board;
    unsigned current = 0;
    Phase phase;
    Stage stage = Stage::First;
    Move firstMove = NoMove;
    Move secondMove = NoMove;
};

/// Reports a preferred move from the table that cannot be played.
void reportHashCollision(Move move);

/// Swaps the best of the remaining moves to the front: every strictly better one that the scan
/// meets changes places with it, so the order of equal moves follows from the swaps.
inline Move MovePicker::selectBest() {
    ScoredMove* const front = list.moves + current++;
    ScoredMove best = *front;
    for (ScoredMove* entry = front + 1; entry != list.moves + list.count; ++entry) {
        if (entry->score > best.score) std::swap(best, *entry);
    }
    *front = best;
    return best.move;
}

template <Colour Us>
Move MovePicker::next() {
    // Most calls; not in the switch, whose jump is hard to predict.
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
                reportHashCollision(secondMove);
                secondMove = NoMove;
            }
            [[fallthrough]];
        case Stage::Generate:
            stage = Stage::Selected;
            if (phase == Phase::Captures) {
                generateCaptures<Us>(board, info, list);
                return nextSelected();
            }
            killers = KillerSet(board);  // as they are now: the search of the captures changes them
            if (!beginsWithGoodCaptures<Us>()) {
                generateScoredMoves<Us>(board, info, killers, list);
                return nextSelected();
            }
            stage = Stage::GoodCaptures;
            generateGoodCaptures<Us>(board, info, list);
            [[fallthrough]];
        case Stage::GoodCaptures:
            if (const Move move = nextSelected()) return move;
            stage = Stage::Sorted;
            list.count = 0;
            generateScoredMoves<Us>(board, info, killers, list);
            sortAsSelected(list);  // the captures handed out stand in front again
            return nextSorted();
        case Stage::Selected:
        case Stage::Sorted:
            break;
    }
    return NoMove;
}

inline Move MovePicker::nextSelected() {
    while (current < list.count) {
        const Move move = selectBest();
        if (!isPreferred(move)) return move;
    }
    return NoMove;
}

inline Move MovePicker::nextSorted() {
    while (current < list.count) {
        const Move move = list.moves[current++].move;
        if (!isPreferred(move)) return move;
    }
    return NoMove;
}

}  // namespace vatro
