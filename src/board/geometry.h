// src/board/geometry.h - directions, attack masks and lines: what depends on the board alone.
//
// The order of each direction list is the order in which moves are generated, and with it the
// order of everything that follows from it. The tables are constants, computed by the compiler.
#pragma once

#include <array>
#include <cstdint>

#include "board/types.h"

namespace vatro {

using SquareMasks = std::array<SquareMask, 64>;  // by sq64

// 0x88 offsets, in the order in which the generators visit them.
inline constexpr int diagonalDirections[4] = {15, 17, -15, -17};
inline constexpr int orthogonalDirections[4] = {-1, 16, 1, -16};
inline constexpr int knightOffsets[8] = {14, 31, 33, 18, -14, -31, -33, -18};
inline constexpr int kingNeighbours[8] = {-1, 16, 1, -16, 15, 17, -15, -17};

/// Squares that a pawn of the colour attacks; empty on its last rank.
extern const std::array<SquareMasks, ColourCount> pawnAttacks;
extern const SquareMasks knightAttacks;
extern const SquareMasks kingAttacks;
/// All squares on the diagonals of a square of an empty board, without the square itself.
extern const SquareMasks bishopRays;
/// The same along its rank and file.
extern const SquareMasks rookRays;

/// 1 on the dark squares (a1, c1, ... h8), 0 on the light ones.
constexpr int squareColour(int square) { return ((rankOf(square) ^ fileOf(square)) & 1) ^ 1; }

/// Squares strictly between two squares of one line, else empty.
extern const std::array<SquareMasks, 64> squaresBetween;
/// The whole line, both ends included, through two different squares, else empty.
extern const std::array<SquareMasks, 64> lineThrough;

/// Squares beyond a square along one of the eight sliding directions.
struct Ray {
    SquareMask squares;
    bool ascending;  // sq64 grows with the distance
};
/// By index into diagonalDirections (0-3) or, from 4 on, into orthogonalDirections, and sq64.
extern const std::array<std::array<Ray, 64>, 8> slidingRays;

constexpr int FirstDiagonalRay = 0;
constexpr int FirstOrthogonalRay = 4;

/// The larger of the file difference and the rank difference of two squares given by sq64.
constexpr int kingDistance(int a, int b) {
    const int files =
        fileOf64(a) > fileOf64(b) ? fileOf64(a) - fileOf64(b) : fileOf64(b) - fileOf64(a);
    const int ranks =
        rankOf64(a) > rankOf64(b) ? rankOf64(a) - rankOf64(b) : rankOf64(b) - rankOf64(a);
    return files > ranks ? files : ranks;
}

/// Squares that a bishop on the square attacks with the given pieces on the board: empty squares
/// up to and including the first occupied one in each direction.
SquareMask bishopAttacks(int sq64, SquareMask occupied);
/// The same for a rook.
SquareMask rookAttacks(int sq64, SquareMask occupied);

}  // namespace vatro

#include "board/sliding_attacks.h"
