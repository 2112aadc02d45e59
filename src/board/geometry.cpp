// board/geometry.cpp - the tables of geometry.h.
#include "board/geometry.h"

#include "board/stepping.h"

namespace vatro {
namespace {

template <typename Function>
constexpr SquareMasks maskOfEach(Function function) {
    SquareMasks table{};
    for (const Square64 square : allSquares) {
        table[square] = function(square);
    }
    return table;
}

template <std::size_t N>
constexpr SquareMasks stepsOfEach(const int (&offsets)[N]) {
    return maskOfEach([&](Square64 square) { return stepsFrom(square, offsets); });
}

template <std::size_t N>
constexpr SquareMasks raysOfEach(const int (&directions)[N]) {
    return maskOfEach([&](Square64 square) { return raysFrom(square, directions); });
}

constexpr std::array<SquareMasks, 64> buildBetween() {
    std::array<SquareMasks, 64> table{};
    for (const Square64 from : allSquares) {
        for (const int direction : kingNeighbours) {
            SquareMask passed = 0;
            for (Square to = as88(from) + direction; isOnBoard(to); to += direction) {
                table[from][as64(to)] = passed;
                passed |= maskOf(to);
            }
        }
    }
    return table;
}

constexpr std::array<SquareMasks, 64> buildLines() {
    std::array<SquareMasks, 64> table{};
    for (const Square64 from : allSquares) {
        for (const int direction : kingNeighbours) {
            const SquareMask ahead = rayFrom(from, direction);
            const SquareMask line = ahead | rayFrom(from, -direction) | maskOf(from);
            for (const Square64 to : allSquares) {
                if (contains(ahead, to)) table[from][to] = line;
            }
        }
    }
    return table;
}

constexpr std::array<std::array<Ray, 64>, 8> buildRays() {
    std::array<std::array<Ray, 64>, 8> table{};
    for (int i = 0; i < 4; ++i) {
        const int diagonal = diagonalDirections[i];
        const int orthogonal = orthogonalDirections[i];
        for (const Square64 from : allSquares) {
            table[FirstDiagonalRay + i][from] = {rayFrom(from, diagonal), diagonal > 0};
            table[FirstOrthogonalRay + i][from] = {rayFrom(from, orthogonal), orthogonal > 0};
        }
    }
    return table;
}

}  // namespace

constexpr std::array<SquareMasks, ColourCount> pawnAttacks = {stepsOfEach(whitePawnCaptures),
                                                              stepsOfEach(blackPawnCaptures)};
constexpr SquareMasks knightAttacks = stepsOfEach(knightOffsets);
constexpr SquareMasks kingAttacks = stepsOfEach(kingNeighbours);
constexpr SquareMasks bishopRays = raysOfEach(diagonalDirections);
constexpr SquareMasks rookRays = raysOfEach(orthogonalDirections);
constexpr std::array<SquareMasks, 64> squaresBetween = buildBetween();
constexpr std::array<SquareMasks, 64> lineThrough = buildLines();
constexpr std::array<std::array<Ray, 64>, 8> slidingRays = buildRays();

}  // namespace vatro
