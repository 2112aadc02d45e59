// eval/tropism.h - what a piece is worth for being able to attack the squares around the enemy
// king.
//
// The number of squares is looked up, as on an empty board; no attacks are generated.
#pragma once

#include <array>

#include "board/board.h"
#include "board/types.h"
#include "eval/score_sum.h"

namespace vatro {

// By piece type. Tuned; no derivation.
constexpr ScoreSum tropismWeight[PieceTypeCount] = {
    {0, 0},                                  // NoPiece
    {10, -4}, {13, -5}, {9, -3}, {15, -11},  // Pawn, Knight, Bishop, Rook
    {5, 41},  {18, 14},                      // Queen, King
};

/// What attacks the surroundings of a king on one square.
struct alignas(64) KingTropism {
    /// What a piece is worth on a square: its weight for each square around the king that it
    /// attacks. Not for pawns.
    ScoreSum term(PieceType type, int sq64) const { return terms[type - Knight][sq64]; }

    std::array<std::array<ScoreSum, 64>, 5> terms;
    /// The squares on which a pawn of a colour attacks one of them, and two. Not those beyond the
    /// king's rank: a pawn that has passed it earns nothing.
    SquareMask onePawnAttack[ColourCount];
    SquareMask twoPawnAttacks[ColourCount];
};

constexpr int NoKing = 64;  // index for a missing king: nothing attacks it
/// By the king's sq64.
extern const std::array<KingTropism, 65> kingTropism;

inline const KingTropism& tropismTowards(const Board_0x88& board, Colour kingColour) {
    return kingTropism[board.hasKing(kingColour) ? toSq64(board.kingSquare(kingColour)) : NoKing];
}

template <Colour Us>
ScoreSum pawnTropism(SquareMask pawns, const KingTropism& towards) {
    return (countSquares(pawns & towards.onePawnAttack[Us]) +
            2 * countSquares(pawns & towards.twoPawnAttacks[Us])) *
           tropismWeight[Pawn];
}

}  // namespace vatro
