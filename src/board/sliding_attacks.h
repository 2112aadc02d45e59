// src/board/sliding_attacks.h - attacks along lines; inlined into hot code.
//
// The pieces on a line are packed into a byte, a small table knows where a slider stops among them,
// and the answer is spread over the line again. Where the machine cannot pack in one instruction,
// subtraction finds the same squares (lineAttacks below).
#pragma once

#include "board/geometry.h"

// The first generations of AMD's Zen have the instructions, but take hundreds of cycles for one.
#if defined(__BMI2__) && !defined(__znver1__) && !defined(__znver2__)
#include <immintrin.h>
#define VATRO_PACKS_LINES 1
#endif

namespace vatro {

/// A line through a square, with the square itself, and where on it the square lies: the number of
/// its squares with a lower sq64.
struct SquareLine {
    SquareMask squares;
    std::uint64_t position;
};
struct SquareLines {
    SquareLine diagonal;      // the a1-h8 direction
    SquareLine antiDiagonal;  // the h1-a8 direction
    SquareLine file;
};
extern const std::array<SquareLines, 64> squareLines;
/// Attacks along a line of eight squares by position and by the occupation of the line.
extern const std::array<std::array<std::uint8_t, 256>, 8> rankAttacks;

constexpr SquareMask mirrorRanks(SquareMask mask) {
#if defined(__GNUC__)
    return __builtin_bswap64(mask);
#else
    mask = ((mask >> 8) & 0x00FF00FF00FF00FFULL) | ((mask & 0x00FF00FF00FF00FFULL) << 8);
    mask = ((mask >> 16) & 0x0000FFFF0000FFFFULL) | ((mask & 0x0000FFFF0000FFFFULL) << 16);
    return (mask >> 32) | (mask << 32);
#endif
}

#if defined(VATRO_PACKS_LINES)

// A line of fewer squares leaves the high bits of the byte empty; what the table says of them is
// dropped when the answer is spread.
inline SquareMask lineAttacks([[maybe_unused]] int sq64,
                              const SquareLine& line,
                              SquareMask occupied) {
    return _pdep_u64(rankAttacks[line.position][_pext_u64(occupied, line.squares)], line.squares);
}

#else

// Subtracting the slider's bit from the occupied squares borrows up to the first blocker: the bits
// that change are the squares it reaches. The other direction is the same on the byte-swapped
// board, which mirrors ranks and so turns files and diagonals around. Ranks do not turn.
constexpr SquareMask lineAttacks(int sq64, const SquareLine& line, SquareMask occupied) {
    const SquareMask others = line.squares ^ maskOf(sq64);
    const SquareMask blockers = occupied & others;
    const SquareMask up = blockers - maskOf(sq64);
    const SquareMask down = mirrorRanks(mirrorRanks(blockers) - maskOf(sq64 ^ 56));
    return (up ^ down) & others;
}

#endif

inline SquareMask bishopAttacks(int sq64, SquareMask occupied) {
    const SquareLines& lines = squareLines[sq64];
    return lineAttacks(sq64, lines.diagonal, occupied) |
           lineAttacks(sq64, lines.antiDiagonal, occupied);
}

inline SquareMask rookAttacks(int sq64, SquareMask occupied) {
    const int rankShift = sq64 & 56;
    const SquareMask rank = rankAttacks[fileOf64(sq64)][(occupied >> rankShift) & 255];
    return lineAttacks(sq64, squareLines[sq64].file, occupied) | (rank << rankShift);
}

}  // namespace vatro
