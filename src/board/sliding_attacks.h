// board/sliding_attacks.h - attacks of bishops and rooks; inlined into hot code.
//
// The pieces on a line are packed into a byte, a table gives the squares that a slider among them
// reaches, and the answer is spread over the line again. On machines that cannot pack in one
// instruction, a subtraction finds the same squares (lineAttacks below).
#pragma once

#include <array>
#include <cstdint>

#include "board/types.h"

// AMD's Zen 1 and 2 have the instructions, but one takes hundreds of cycles.
#if defined(__x86_64__) && defined(__BMI2__) && !defined(__znver1__) && !defined(__znver2__)
#include <immintrin.h>
#define VATRO_PACKS_LINES 1
#endif

namespace vatro {

/// A line through a square, with the square itself.
struct SquareLine {
    SquareMask squares;
    std::uint64_t position;  // of the square on the line, counted from a1's end
};
struct SquareLines {
    SquareLine diagonal;      // the a1-h8 direction
    SquareLine antiDiagonal;  // the h1-a8 direction
    SquareLine file;
};
extern const std::array<SquareLines, 64> squareLines;
/// Attacks along a line of eight squares, by position and by the occupied squares of the line.
extern const std::array<std::array<std::uint8_t, 256>, 8> rankAttacks;

#if defined(VATRO_PACKS_LINES)

// A line shorter than eight squares leaves the high bits of the byte empty. What the table says of
// them has no square to go to when the answer is spread.
inline SquareMask lineAttacks([[maybe_unused]] Square64 from,
                              const SquareLine& line,
                              SquareMask occupied) {
    return _pdep_u64(rankAttacks[line.position][_pext_u64(occupied, line.squares)], line.squares);
}

#else

// Subtracting the slider's bit from the occupied squares above it borrows up to the first blocker:
// the bits that change are the squares it reaches. Downwards it is the same on the board with its
// ranks mirrored. That does not turn a rank around, so ranks always use the table.
constexpr SquareMask lineAttacks(Square64 from, const SquareLine& line, SquareMask occupied) {
    const SquareMask others = line.squares ^ maskOf(from);
    const SquareMask blockers = occupied & others;
    const SquareMask up = blockers - maskOf(from);
    const SquareMask down = mirrorRanks(mirrorRanks(blockers) - maskOf(mirrorRanks(from)));
    return (up ^ down) & others;
}

#endif

/// Squares that a bishop attacks: in each direction up to the first occupied one, which counts.
inline SquareMask bishopAttacks(Square64 from, SquareMask occupied) {
    const SquareLines& lines = squareLines[from];
    return lineAttacks(from, lines.diagonal, occupied) |
           lineAttacks(from, lines.antiDiagonal, occupied);
}

/// The same for a rook.
inline SquareMask rookAttacks(Square64 from, SquareMask occupied) {
    const int rankShift = 8 * rankOf(from);
    const SquareMask rank = rankAttacks[fileOf(from)][(occupied >> rankShift) & 0xFF];
    return lineAttacks(from, squareLines[from].file, occupied) | (rank << rankShift);
}

}  // namespace vatro
