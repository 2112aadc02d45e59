// board/geometry.h - directions, attack masks and lines: what depends on the board alone.
//
// Moves are generated in the order of these direction lists, and node counts follow from that
// order. The tables are constants, computed by the compiler.
#pragma once

#include <array>

#include "board/types.h"

namespace vatro {

using SquareMasks = std::array<SquareMask, 64>;  // by Square64

constexpr SquareMask FileA = 0x0101010101010101ULL;
constexpr SquareMask FileH = FileA << 7;

// 0x88 offsets.
inline constexpr int diagonalDirections[4] = {15, 17, -15, -17};
inline constexpr int orthogonalDirections[4] = {-1, 16, 1, -16};
inline constexpr int knightOffsets[8] = {14, 31, 33, 18, -14, -31, -33, -18};
inline constexpr int kingNeighbours[8] = {-1, 16, 1, -16, 15, 17, -15, -17};
inline constexpr int whitePawnCaptures[2] = {15, 17};
inline constexpr int blackPawnCaptures[2] = {-15, -17};

/// Squares that a pawn of the colour attacks; empty on its last rank.
extern const std::array<SquareMasks, ColourCount> pawnAttacks;
extern const SquareMasks knightAttacks;
extern const SquareMasks kingAttacks;
/// The diagonals through a square, without the square itself: what a bishop attacks on an empty
/// board.
extern const SquareMasks bishopRays;
/// The same for a rook.
extern const SquareMasks rookRays;

/// 1 on the dark squares (a1, c1, ... h8), 0 on the light ones.
constexpr int squareColour(Square64 square) { return ((rankOf(square) ^ fileOf(square)) & 1) ^ 1; }

/// Squares strictly between two squares of one line, else empty.
extern const std::array<SquareMasks, 64> squaresBetween;
/// The whole line, both ends included, through two different squares, else empty.
extern const std::array<SquareMasks, 64> lineThrough;

/// Squares beyond a square in one of the eight sliding directions.
struct Ray {
    SquareMask squares;
    bool ascending;  // the square's number grows along the ray
};
/// Four rays for diagonalDirections, then four for orthogonalDirections; each by its first square.
extern const std::array<std::array<Ray, 64>, 8> slidingRays;

constexpr int FirstDiagonalRay = 0;
constexpr int FirstOrthogonalRay = 4;

/// A king's steps from one square to the other on an empty board.
constexpr int kingDistance(Square64 a, Square64 b) {
    const int files = fileOf(a) > fileOf(b) ? fileOf(a) - fileOf(b) : fileOf(b) - fileOf(a);
    const int ranks = rankOf(a) > rankOf(b) ? rankOf(a) - rankOf(b) : rankOf(b) - rankOf(a);
    return files > ranks ? files : ranks;
}

}  // namespace vatro
