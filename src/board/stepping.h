// board/stepping.h - masks built by stepping over the 0x88 board; for the compiler, to build
// tables.
#pragma once

#include <cstddef>

#include "board/types.h"

namespace vatro {

/// The squares one step away, by any of the offsets, that are on the board.
template <std::size_t N>
constexpr SquareMask stepsFrom(Square64 from, const int (&offsets)[N]) {
    SquareMask mask = 0;
    for (const int offset : offsets) {
        const Square to = as88(from) + offset;
        if (isOnBoard(to)) mask |= maskOf(to);
    }
    return mask;
}

/// All squares beyond `from` in one direction.
constexpr SquareMask rayFrom(Square64 from, int direction) {
    SquareMask mask = 0;
    for (Square to = as88(from) + direction; isOnBoard(to); to += direction) {
        mask |= maskOf(to);
    }
    return mask;
}

template <std::size_t N>
constexpr SquareMask raysFrom(Square64 from, const int (&directions)[N]) {
    SquareMask mask = 0;
    for (const int direction : directions) {
        mask |= rayFrom(from, direction);
    }
    return mask;
}

}  // namespace vatro
