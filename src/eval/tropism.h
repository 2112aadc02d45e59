// eval/tropism.h - what a piece is worth for being able to attack the squares around the enemy
// king.
//
// The number of squares is looked up, as on an empty board; no attacks are generated.
#pragma once

#include <array>

#include "board/board.h"
#include "board/score_sum.h"
#include "board/types.h"

namespace vatro {

// By piece type. Tuned; no derivation.
constexpr ScoreSum tropismWeight[PieceTypeCount] = {
    {0, 0},                                  // NoPiece
    {10, -4}, {13, -5}, {9, -3}, {15, -11},  // Pawn, Knight, Bishop, Rook
    {5, 41},  {18, 14},                      // Queen, King
};

/// What pieces are worth for attacking the squares around a king on one square.
struct alignas(64) KingTropism {
    /// For a piece on a square: its weight for each square around the king that it attacks. Not for
    /// pawns.
    ScoreSum term(PieceType type, Square64 square) const {
        return terms[kindOf(type) - kindOf(Knight)][square];
    }

    std::array<std::array<ScoreSum, 64>, 5> terms;
    /// Where a pawn of a colour attacks one of the squares around the king, and where two. A pawn
    /// that has passed the king's rank earns nothing.
    SquareMask onePawnAttack[ColourCount];
    SquareMask twoPawnAttacks[ColourCount];
};

/// By the king's square; under NoSquare64, for a missing king, nothing earns anything.
extern const std::array<KingTropism, NoSquare64 + 1> kingTropism;

inline const KingTropism& tropismTowards(const Board_0x88& board, Colour kingColour) {
    return kingTropism[board.hasKing(kingColour) ? as64(board.kingSquare(kingColour)) : NoSquare64];
}

template <Colour Us>
ScoreSum pawnTropism(SquareMask pawns, const KingTropism& towards) {
    return (countSquares(pawns & towards.onePawnAttack[Us]) +
            2 * countSquares(pawns & towards.twoPawnAttacks[Us])) *
           tropismWeight[Pawn];
}

}  // namespace vatro
