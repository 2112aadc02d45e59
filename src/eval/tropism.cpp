// eval/tropism.cpp - the tropism tables, built from a few placements of the king.
#include "eval/tropism.h"

#include "board/geometry.h"
#include "board/stepping.h"

namespace vatro {
namespace {

constexpr int DistanceCount = 120;

using DistanceCounts = std::array<std::array<std::uint8_t, DistanceCount>, PieceKindCount>;

/// The tables know two squares by this distance alone: pairs that share it share their values.
constexpr int distanceOf(Square a, Square b) { return a > b ? a - b : b - a; }

/// Notes what a piece of each type on `from` would attack around a king.
constexpr void notePlacement(DistanceCounts& counts, Square kingSquare, Square fromSquare) {
    const Square64 king = as64(kingSquare);
    const Square64 from = as64(fromSquare);
    const SquareMask zone = stepsFrom(king, kingNeighbours);
    const SquareMask near = zone & stepsFrom(from, kingNeighbours);
    const SquareMask diagonals = raysFrom(from, diagonalDirections);
    const SquareMask orthogonals = raysFrom(from, orthogonalDirections);
    const int distance = distanceOf(kingSquare, fromSquare);
    // A zero does not erase what another placement has noted; of the two pawns the black one is
    // noted last.
    const auto note = [&](PieceType type, int count) {
        if (count) counts[type - 1][distance] = static_cast<std::uint8_t>(count);
    };
    note(Pawn, countSquares(zone & stepsFrom(from, whitePawnCaptures)));
    note(Pawn, countSquares(zone & stepsFrom(from, blackPawnCaptures)));
    note(Knight, countSquares(zone & stepsFrom(from, knightOffsets)));
    if (zone & diagonals) note(Bishop, 1 + countSquares(near & diagonals));
    if (zone & orthogonals) note(Rook, 1 + countSquares(near & orthogonals));
    if (zone & (diagonals | orthogonals)) note(Queen, 1 + countSquares(near));
    note(King, countSquares(near));
}

/// A king and a rectangle of squares from which it is attacked.
struct Placement {
    Square king;
    Square firstCorner;  // lowest file and rank
    Square lastCorner;   // highest file and rank
};
// The rows cover every distance. The first four have the pieces to the left of the king, the others
// to its right.
constexpr Placement placements[] = {
    {G7, A1, G6}, {G7, A7, F7}, {H8, A1, H1}, {H8, A2, A8},
    {B7, C1, H6}, {A8, B1, H1}, {A8, H2, H7},
};

constexpr DistanceCounts buildCounts() {
    DistanceCounts counts{};
    for (const Placement& placement : placements) {
        for (int rank = rankOf(placement.firstCorner); rank <= rankOf(placement.lastCorner);
             ++rank) {
            const int last = fileOf(placement.lastCorner);
            for (int file = fileOf(placement.firstCorner); file <= last; ++file) {
                notePlacement(counts, placement.king, squareAt(file, rank));
            }
        }
    }
    return counts;
}
constexpr DistanceCounts countsByDistance = buildCounts();

constexpr KingTropism buildTropism(Square64 king) {
    KingTropism tropism{};
    for (const Square64 from : allSquares) {
        const int distance = distanceOf(as88(king), as88(from));
        for (int kind = Knight - 1; kind < PieceKindCount; ++kind) {
            tropism.terms[kind - (Knight - 1)][from] =
                countsByDistance[kind][distance] * tropismWeight[kind + 1];
        }
        const int pawnAttacksHere = countsByDistance[Pawn - 1][distance];
        for (const Colour colour : {White, Black}) {
            const int ahead = rankOf(king) - rankOf(from);
            if (colour == White ? ahead < 0 : ahead > 0) continue;  // past the king's rank
            if (pawnAttacksHere == 1) tropism.onePawnAttack[colour] |= maskOf(from);
            if (pawnAttacksHere == 2) tropism.twoPawnAttacks[colour] |= maskOf(from);
        }
    }
    return tropism;
}

constexpr std::array<KingTropism, NoSquare64 + 1> buildTable() {
    std::array<KingTropism, NoSquare64 + 1> table{};
    for (const Square64 king : allSquares) {
        table[king] = buildTropism(king);
    }
    return table;
}

}  // namespace

constexpr std::array<KingTropism, NoSquare64 + 1> kingTropism = buildTable();

}  // namespace vatro
