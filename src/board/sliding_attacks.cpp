// board/sliding_attacks.cpp - the tables of sliding_attacks.h.
#include "board/sliding_attacks.h"

#include "board/stepping.h"

namespace vatro {
namespace {

/// `up`: the offset of the line's direction in which the squares' numbers grow.
constexpr SquareLine lineOf(Square64 square, int up) {
    const SquareMask below = rayFrom(square, -up);
    return {below | maskOf(square) | rayFrom(square, up),
            static_cast<std::uint64_t>(countSquares(below))};
}

constexpr std::array<SquareLines, 64> buildSquareLines() {
    std::array<SquareLines, 64> table{};
    for (const Square64 square : allSquares) {
        table[square] = {lineOf(square, 17), lineOf(square, 15), lineOf(square, 16)};
    }
    return table;
}

constexpr std::array<std::array<std::uint8_t, 256>, 8> buildRankAttacks() {
    std::array<std::array<std::uint8_t, 256>, 8> table{};
    for (int file = 0; file < 8; ++file) {
        for (unsigned occupied = 0; occupied < 256; ++occupied) {
            unsigned attacks = 0;
            for (const int step : {-1, 1}) {
                for (int to = file + step; to >= 0 && to < 8; to += step) {
                    attacks |= 1U << to;
                    if ((occupied >> to) & 1) break;
                }
            }
            table[file][occupied] = static_cast<std::uint8_t>(attacks);
        }
    }
    return table;
}

}  // namespace

constexpr std::array<SquareLines, 64> squareLines = buildSquareLines();
constexpr std::array<std::array<std::uint8_t, 256>, 8> rankAttacks = buildRankAttacks();

}  // namespace vatro
