// src/board/sliding_attacks.h - attacks along lines, by subtraction; inlined into hot code.
//
// On one line, subtracting the slider's bit (twice) from the occupied squares borrows up to the
// first blocker: the bits that change are the squares it reaches. The other direction is the same
// on the byte-swapped board, which mirrors ranks and so turns files and diagonals around; ranks do
// not turn and come from a small table.
#pragma once

#include "board/geometry.h"

namespace vatro {

/// Lines through a square, without the square itself.
struct SquareLines {
    SquareMask diagonal;      // the a1-h8 direction
    SquareMask antiDiagonal;  // the h1-a8 direction
    SquareMask file;
};
extern const std::array<SquareLines, 64> squareLines;
/// Attacks along a rank by file and by the occupation of files b to g.
extern const std::array<std::array<std::uint8_t, 64>, 8> rankAttacks;

constexpr SquareMask mirrorRanks(SquareMask mask) {
#if defined(__GNUC__)
    return __builtin_bswap64(mask);
#else
    mask = ((mask >> 8) & 0x00FF00FF00FF00FFULL) | ((mask & 0x00FF00FF00FF00FFULL) << 8);
    mask = ((mask >> 16) & 0x0000FFFF0000FFFFULL) | ((mask & 0x0000FFFF0000FFFFULL) << 16);
    return (mask >> 32) | (mask << 32);
#endif
}

constexpr SquareMask lineAttacks(int sq64, SquareMask line, SquareMask occupied) {
    const SquareMask blockers = occupied & line;
    const SquareMask up = blockers - maskOf(sq64);
    const SquareMask down = mirrorRanks(mirrorRanks(blockers) - maskOf(sq64 ^ 56));
    return (up ^ down) & line;
}

inline SquareMask bishopAttacks(int sq64, SquareMask occupied) {
    const SquareLines& lines = squareLines[sq64];
    return lineAttacks(sq64, lines.diagonal, occupied) |
           lineAttacks(sq64, lines.antiDiagonal, occupied);
}

inline SquareMask rookAttacks(int sq64, SquareMask occupied) {
    const int rankShift = sq64 & 56;
    const SquareMask rank = rankAttacks[fileOf64(sq64)][(occupied >> (rankShift + 1)) & 63];
    return lineAttacks(sq64, squareLines[sq64].file, occupied) | (rank << rankShift);
}

}  // namespace vatro
