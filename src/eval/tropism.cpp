// eval/tropism.cpp - the tropism tables, built from king placements in two corners.
#include "eval/tropism.h"

#include "board/geometry.h"

namespace vatro {
namespace {

constexpr int PieceKinds = 6;
constexpr int DistanceCount = 120;

constexpr int whitePawnOffsets[] = {15, 17};
constexpr int blackPawnOffsets[] = {-15, -17};

template <std::size_t N>
constexpr SquareMask steps(Square from, const int (&offsets)[N]) {
    SquareMask mask = 0;
    for (const int offset : offsets) {
        const int to = from + offset;
        if (isOnBoard(to)) mask |= maskOf(toSq64(to));
    }
    return mask;
}

constexpr SquareMask lines(Square from, const int (&directions)[4]) {
    SquareMask mask = 0;
    for (const int direction : directions) {
        for (int to = from + direction; isOnBoard(to); to += direction) {
            mask |= maskOf(toSq64(to));
        }
    }
    return mask;
}

using DistanceCounts = std::array<std::array<std::uint8_t, DistanceCount>, PieceKinds>;

/// Notes what a piece of each type on `from` would attack around a king.
constexpr void notePlacement(DistanceCounts& counts, Square king, Square from) {
    const SquareMask zone = steps(king, kingNeighbours);
    const SquareMask near = zone & steps(from, kingNeighbours);
    const SquareMask diagonals = lines(from, diagonalDirections);
    const SquareMask orthogonals = lines(from, orthogonalDirections);
    const int distance = king > from ? king - from : from - king;
    // Zero stores nothing; of the two pawns the black one is noted last.
    const auto note = [&](PieceType type, int count) {
        if (count) counts[type - 1][distance] = static_cast<std::uint8_t>(count);
    };
    note(Pawn, countSquares(zone & steps(from, whitePawnOffsets)));
    note(Pawn, countSquares(zone & steps(from, blackPawnOffsets)));
    note(Knight, countSquares(zone & steps(from, knightOffsets)));
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
constexpr Square squareAt(char file, int rank) {
    return static_cast<Square>((rank - 1) * 16 + (file - 'a'));
}
// Every distance of two squares occurs in just one of four placements (of one or two rows here):
// the pieces stand to the left of the king for the first two, to the right for the others.
constexpr Placement placements[] = {
    {squareAt('g', 7), squareAt('a', 1), squareAt('g', 6)},
    {squareAt('g', 7), squareAt('a', 7), squareAt('f', 7)},
    {squareAt('h', 8), squareAt('a', 1), squareAt('h', 1)},
    {squareAt('h', 8), squareAt('a', 2), squareAt('a', 8)},
    {squareAt('b', 7), squareAt('c', 1), squareAt('h', 6)},
    {squareAt('a', 8), squareAt('b', 1), squareAt('h', 1)},
    {squareAt('a', 8), squareAt('h', 2), squareAt('h', 7)},
};

constexpr DistanceCounts buildCounts() {
    DistanceCounts counts{};
    for (const Placement& placement : placements) {
        for (int rank = rankOf(placement.firstCorner); rank <= rankOf(placement.lastCorner);
             ++rank) {
            const int last = fileOf(placement.lastCorner);
            for (int file = fileOf(placement.firstCorner); file <= last; ++file) {
                notePlacement(counts, placement.king, static_cast<Square>(rank * 16 + file));
            }
        }
    }
    return counts;
}
constexpr DistanceCounts countsByDistance = buildCounts();

constexpr KingTropism buildTropism(int king) {
    KingTropism tropism{};
    for (int from = 0; from < 64; ++from) {
        const int difference = toSquare(king) - toSquare(from);
        const int distance = difference < 0 ? -difference : difference;
        for (int kind = Knight - 1; kind < PieceKinds; ++kind) {
            tropism.terms[kind - (Knight - 1)][from] =
                countsByDistance[kind][distance] * tropismWeight[kind + 1];
        }
        const int pawnAttacksHere = countsByDistance[Pawn - 1][distance];
        for (const Colour colour : {White, Black}) {
            const int ahead = rankOf64(king) - rankOf64(from);
            if (colour == White ? ahead < 0 : ahead > 0) continue;  // past the king's rank
            if (pawnAttacksHere == 1) tropism.onePawnAttack[colour] |= maskOf(from);
            if (pawnAttacksHere == 2) tropism.twoPawnAttacks[colour] |= maskOf(from);
        }
    }
    return tropism;
}

constexpr std::array<KingTropism, 65> buildTable() {
    std::array<KingTropism, 65> table{};
    for (int king = 0; king < 64; ++king) {
        table[king] = buildTropism(king);
    }
    return table;
}

}  // namespace

constexpr std::array<KingTropism, 65> kingTropism = buildTable();

}  // namespace vatro
