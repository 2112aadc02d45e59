// eval/tropism.h - what a piece is worth for being able to attack the squares around the enemy
// king.
//
// The number of squares comes from a table by the difference of two 0x88 squares, as on an empty
// board, so that no attacks are generated.
#pragma once

#include <array>

#include "board/types.h"
#include "eval/score_sum.h"

namespace vatro {

/// By piece type - 1 and |piece's square - enemy king's square|. A missing king stands on NoSquare,
/// 136 or more away from every square, where nothing is stored.
using TropismTable = std::array<std::array<ScoreSum, 256>, 6>;
extern const TropismTable tropismTable;

/// The squares on which a pawn earns its tropism weight once, and twice, by colour of the pawn and
/// square of the enemy king.
struct PawnTropism {
    SquareMask once;
    SquareMask twice;
};
extern const std::array<std::array<PawnTropism, 64>, ColourCount> pawnTropismMasks;

constexpr ScoreSum pawnTropismWeight{10, -4};

/// Not for pawns, which earn nothing any more when they have passed the king's rank.
inline ScoreSum tropismTerm(PieceType type, Square square, Square enemyKing) {
    const int distance = square > enemyKing ? square - enemyKing : enemyKing - square;
    return tropismTable[type - 1][distance];
}

template <Colour Us>
ScoreSum pawnTropismTerms(SquareMask pawns, Square enemyKing) {
    if (enemyKing == NoSquare) return {};
    const PawnTropism& masks = pawnTropismMasks[Us][toSq64(enemyKing)];
    return (countSquares(pawns & masks.once) + 2 * countSquares(pawns & masks.twice)) *
           pawnTropismWeight;
}

}  // namespace vatro
