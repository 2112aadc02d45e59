// eval/passed_pawns.h - what passed pawns are worth.
//
// Unlike the pawn structure it depends on the other pieces too, so no hash keeps it.
#pragma once

#include <algorithm>
#include <array>

#include "board/board.h"
#include "board/geometry.h"
#include "board/score_sum.h"
#include "board/side.h"
#include "eval/pawn_masks.h"

namespace vatro {

constexpr int PassedStepCount = 12;
constexpr int UnstoppableStepCount = 7;
/// By the number of steps to promotion.
extern const std::array<ScoreSum, PassedStepCount> passedPawnBonus;
/// The same for a pawn with an enemy piece on its way: a quarter of it.
extern const std::array<ScoreSum, PassedStepCount> blockedPawnBonus;
/// Added when the enemy has only king and pawns and its king comes too late.
extern const std::array<ScoreSum, UnstoppableStepCount> unstoppablePawnBonus;

/// True when the enemy king does not reach the promotion square of an unblocked pawn in time.
template <Colour Us>
bool isUnstoppable(const Board_0x88& board, Square64 pawn, int steps) {
    constexpr Colour Them = Side<Us>::Them;
    if (board.totalCount(Them) != board.count(Them, Pawn) + 1 || !board.hasKing(Them)) return false;
    const Square64 promotion = square64At(fileOf(pawn), Side<Us>::relativeRank(7));
    const int distance = kingDistance(as64(board.kingSquare(Them)), promotion);
    return steps < (board.sideToMove == Them ? distance - 1 : distance);
}

/// The terms of `passed`, the passed pawns of `Us`.
template <Colour Us>
ScoreSum passedPawnTerms(const Board_0x88& board, SquareMask passed) {
    constexpr Colour Them = Side<Us>::Them;
    const SquareMask enemyPieces = board.pieceMask[Them][NoPiece];
    const SquareMask occupied = board.occupied();
    ScoreSum score;
    for (; passed; passed &= passed - 1) {
        const Square64 pawn = lowestSquare(passed);
        const int rank = Side<Us>::relativeRank(rankOf(pawn));
        const SquareMask front = frontSpan<Us>(pawn);
        const bool blocked = (front & enemyPieces) != 0;
        // The double step saves a step; every piece on the way costs one. Only a pawn set up on its
        // first rank could need more steps than the table has.
        const int way = 7 - rank - static_cast<int>(rank == 1);
        const int steps = std::min(way + countSquares(front & occupied), PassedStepCount - 1);
        if (blocked) {
            score += blockedPawnBonus[steps];
            continue;
        }
        score += passedPawnBonus[steps];
        if (isUnstoppable<Us>(board, pawn, steps)) score += unstoppablePawnBonus[steps];
    }
    return score;
}

}  // namespace vatro
