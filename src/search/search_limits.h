// search/search_limits.h - what a search may be limited to besides its time control.
#pragma once

#include <cstdint>
#include <vector>

#include "board/move.h"

namespace vatro {

struct SearchLimits {
    std::vector<Move> rootMoves;  // legal moves, the only ones to look at; empty: all
    unsigned lines = 1;           // to find, each with another first move
    std::uint64_t nodes = 0;      // of all threads; 0: no limit
    std::int32_t timeCs = 0;      // of a search without a clock; 0: no limit
};

}  // namespace vatro
