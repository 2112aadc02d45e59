// egtb/generator/value_line.h - the values of a word's positions, by the black king's square.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "egtb/generator/value_code.h"
#include "egtb/symmetry.h"

namespace vatro::egtb {

using ValueLine = std::array<Value, 64>;

using SquareMap = std::array<std::uint8_t, 64>;

/// Where each symmetry maps the squares.
inline constexpr std::array<SquareMap, 8> squareMaps = [] {
    std::array<SquareMap, 8> maps{};
    for (int symmetry = 0; symmetry < 8; ++symmetry) {
        for (const Square64 square : allSquares) {
            maps[symmetry][square] = mapSquare(square, symmetry);
        }
    }
    return maps;
}();

/// Raises the values of `best` to those of a move, whose line a symmetry has turned. Black kings on
/// the barred squares, which lie on one line of the board, are in the way of the move.
inline void improve(ValueLine& best, const ValueLine& line, int symmetry, SquareMask barred) {
    std::array<Value, 8> kept;
    int keptCount = 0;
    for (SquareMask rest = barred; rest; rest &= rest - 1) {
        kept[keptCount++] = best[lowestSquare(rest)];
    }
    if (symmetry == 0) {
        for (std::size_t king = 0; king < best.size(); ++king) {
            best[king] = std::max(best[king], line[king]);
        }
    } else {
        const SquareMap& map = squareMaps[symmetry];
        for (std::size_t king = 0; king < best.size(); ++king) {
            best[king] = std::max(best[king], line[map[king]]);
        }
    }
    keptCount = 0;
    for (SquareMask rest = barred; rest; rest &= rest - 1) {
        best[lowestSquare(rest)] = kept[keptCount++];
    }
}

}  // namespace vatro::egtb
