// eval/tropism.cpp - the tropism tables, built from king placements in two corners.
#include "eval/tropism.h"

#include <cstdint>

#include "board/geometry.h"

namespace vatro {
namespace {

constexpr int PieceKinds = 6;
constexpr int DistanceCount = 120;

// By piece type. Tuned; no derivation.
constexpr ScorePair tropismWeight[PieceTypeCount] = {
    {0, 0},                                  // NoPiece
    {10, -4}, {13, -5}, {9, -3}, {15, -11},  // Pawn, Knight, Bishop, Rook
    {5, 41},  {18, 14},                      // Queen, King
};
static_assert(ScorePair(10, -4) == tropismWeight[Pawn] &&
              pawnTropismWeight.pair() == tropismWeight[Pawn]);

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

using SquareCounts = std::array<std::array<std::uint8_t, DistanceCount>, PieceKinds>;

/// Notes what a piece of each type on `from` would attack around a king.
constexpr void notePlacement(SquareCounts& counts, Square king, Square from) {
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

constexpr SquareCounts buildCounts() {
    SquareCounts counts{};
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
constexpr SquareCounts squareCounts = buildCounts();

constexpr TropismTable buildTerms() {
    TropismTable table{};
    for (int kind = 0; kind < PieceKinds; ++kind) {
        const ScorePair weight = tropismWeight[kind + 1];
        for (int distance = 0; distance < DistanceCount; ++distance) {
            const int count = squareCounts[kind][distance];
            table[kind][distance] = ScoreSum(count * weight.mg, count * weight.eg);
        }
    }
    return table;
}

constexpr std::array<std::array<PawnTropism, 64>, ColourCount> buildPawnMasks() {
    std::array<std::array<PawnTropism, 64>, ColourCount> table{};
    for (const Colour colour : {White, Black}) {
        for (int king = 0; king < 64; ++king) {
            for (int pawn = 0; pawn < 64; ++pawn) {
                const int ahead = rankOf64(king) - rankOf64(pawn);
                if (colour == White ? ahead < 0 : ahead > 0) continue;  // past the king's rank
                const int difference = toSquare(king) - toSquare(pawn);
                const int count = squareCounts[Pawn - 1][difference < 0 ? -difference : difference];
                if (count == 1) table[colour][king].once |= maskOf(pawn);
                if (count == 2) table[colour][king].twice |= maskOf(pawn);
            }
        }
    }
    return table;
}

}  // namespace

constexpr TropismTable tropismTable = buildTerms();
constexpr std::array<std::array<PawnTropism, 64>, ColourCount> pawnTropismMasks = buildPawnMasks();

}  // namespace vatro
