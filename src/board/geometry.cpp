// src/board/geometry.cpp - the constant masks, built by stepping over the 0x88 board.
#include "board/geometry.h"

namespace vatro {
namespace {

constexpr bool contains(SquareMask mask, int sq64) { return (mask >> sq64) & 1; }

/// The squares one step away that stay on the board.
template <std::size_t N>
constexpr SquareMask steps(int sq64, const int (&offsets)[N]) {
    SquareMask mask = 0;
    for (const int offset : offsets) {
        const int to = toSquare(sq64) + offset;
        if (isOnBoard(to)) mask |= maskOf(toSq64(to));
    }
    return mask;
}

/// All squares beyond `sq64` in one direction.
constexpr SquareMask rayFrom(int sq64, int direction) {
    SquareMask mask = 0;
    for (int to = toSquare(sq64) + direction; isOnBoard(to); to += direction) {
        mask |= maskOf(toSq64(to));
    }
    return mask;
}

template <typename Function>
constexpr auto forEachSquare(Function function) {
    std::array<decltype(function(0)), 64> table{};
    for (int sq64 = 0; sq64 < 64; ++sq64) {
        table[sq64] = function(sq64);
    }
    return table;
}

constexpr SquareMasks pawnMasks(int first, int second) {
    return forEachSquare([=](int sq64) {
        const int offsets[] = {first, second};
        return steps(sq64, offsets);
    });
}

constexpr SquareMask linesOf(int sq64, const int (&directions)[4]) {
    SquareMask mask = 0;
    for (const int direction : directions) {
        mask |= rayFrom(sq64, direction);
    }
    return mask;
}

constexpr std::array<SquareMasks, 64> buildBetween() {
    std::array<SquareMasks, 64> table{};
    for (int from = 0; from < 64; ++from) {
        for (const int direction : kingNeighbours) {
            SquareMask passed = 0;
            for (int to = toSquare(from) + direction; isOnBoard(to); to += direction) {
                table[from][toSq64(to)] = passed;
                passed |= maskOf(toSq64(to));
            }
        }
    }
    return table;
}

constexpr std::array<SquareMasks, 64> buildLines() {
    std::array<SquareMasks, 64> table{};
    for (int from = 0; from < 64; ++from) {
        for (const int direction : kingNeighbours) {
            const SquareMask ahead = rayFrom(from, direction);
            const SquareMask line = ahead | rayFrom(from, -direction) | maskOf(from);
            for (int to = 0; to < 64; ++to) {
                if (contains(ahead, to)) table[from][to] = line;
            }
        }
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

/// `ascending`: the direction in which sq64 grows.
constexpr SquareLine lineOf(int sq64, int ascending) {
    const SquareMask below = rayFrom(sq64, -ascending);
    return {below | maskOf(sq64) | rayFrom(sq64, ascending),
            static_cast<std::uint64_t>(countSquares(below))};
}

constexpr std::array<std::array<Ray, 64>, 8> buildRays() {
    std::array<std::array<Ray, 64>, 8> table{};
    for (int i = 0; i < 4; ++i) {
        for (int sq64 = 0; sq64 < 64; ++sq64) {
            const int diagonal = diagonalDirections[i];
            const int orthogonal = orthogonalDirections[i];
            table[FirstDiagonalRay + i][sq64] = {rayFrom(sq64, diagonal), diagonal > 0};
            table[FirstOrthogonalRay + i][sq64] = {rayFrom(sq64, orthogonal), orthogonal > 0};
        }
    }
    return table;
}

}  // namespace

constexpr std::array<SquareMasks, ColourCount> pawnAttacks = {pawnMasks(15, 17),
                                                              pawnMasks(-15, -17)};
constexpr SquareMasks knightAttacks =
    forEachSquare([](int sq64) { return steps(sq64, knightOffsets); });
constexpr SquareMasks kingAttacks =
    forEachSquare([](int sq64) { return steps(sq64, kingNeighbours); });
constexpr SquareMasks bishopRays =
    forEachSquare([](int sq64) { return linesOf(sq64, diagonalDirections); });
constexpr SquareMasks rookRays =
    forEachSquare([](int sq64) { return linesOf(sq64, orthogonalDirections); });
constexpr std::array<SquareMasks, 64> squaresBetween = buildBetween();
constexpr std::array<SquareMasks, 64> lineThrough = buildLines();
constexpr std::array<std::array<Ray, 64>, 8> slidingRays = buildRays();
constexpr std::array<SquareLines, 64> squareLines = forEachSquare([](int sq64) {
    return SquareLines{lineOf(sq64, 17), lineOf(sq64, 15), lineOf(sq64, 16)};
});
constexpr std::array<std::array<std::uint8_t, 256>, 8> rankAttacks = buildRankAttacks();

}  // namespace vatro
