// uci/go_command.h - what "go" asks for.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "board/board.h"
#include "board/move.h"

namespace vatro {

/// Numbers that were not given, or that limit nothing, are 0.
struct GoCommand {
    std::optional<std::int64_t> timeLeftMs[ColourCount];
    std::int64_t incrementMs[ColourCount] = {};
    unsigned movesToGo = 0;
    unsigned depth = 0;  // at most Searcher::MaxDepth
    std::uint64_t nodes = 0;
    unsigned mateMoves = 0;
    std::int64_t moveTimeMs = 0;
    bool infinite = false;
    bool ponder = false;
    std::vector<Move> searchMoves;
};

/// Reads the words after "go". Words that are not known are passed over; so are moves that are not
/// legal on the board, but for these a line is added to `faults`.
GoCommand readGoCommand(const std::vector<std::string>& words,
                        const Board_0x88& board,
                        std::vector<std::string>& faults);

/// A whole number of milliseconds in centiseconds, cut off, within what the search can count.
std::int32_t toCentiseconds(std::int64_t milliseconds);

}  // namespace vatro
