// search/principal_variation.h - a line of best moves.
#pragma once

#include <algorithm>
#include <cstdint>

#include "board/move.h"

namespace vatro {

/// Up to 63 moves. A node receives one from its caller, possibly with moves to try first, and
/// hands back its best line in it; a node that finds nothing better leaves it as it came.
struct PrincipalVariation {
    static constexpr unsigned MaxLength = 63;

    std::uint16_t length = 0;
    Move moves[MaxLength];  // only the first `length` mean something

    PrincipalVariation() {}  // NOLINT(modernize-use-equals-default): does not clear the moves
    PrincipalVariation(const PrincipalVariation& other) { *this = other; }
    PrincipalVariation& operator=(const PrincipalVariation& other) {
        if (this == &other) return *this;
        length = other.length;
        std::copy_n(other.moves, length, moves);
        return *this;
    }

    bool empty() const { return length == 0; }
    /// NoMove when the line is empty.
    Move first() const { return length ? moves[0] : NoMove; }
    /// The expected reply, NoMove when the line has one move at most.
    Move second() const { return length > 1 ? moves[1] : NoMove; }

    void setTo(Move move) {
        moves[0] = move;
        length = 1;
    }
    /// The move followed by `rest`, cut to the maximal length.
    void setTo(Move move, const PrincipalVariation& rest) {
        const unsigned kept = std::min<unsigned>(rest.length, MaxLength - 1);
        moves[0] = move;
        std::copy_n(rest.moves, kept, moves + 1);
        length = static_cast<std::uint16_t>(kept + 1);
    }
    /// The moves of `line` after its first.
    void setToRestOf(const PrincipalVariation& line) {
        length = static_cast<std::uint16_t>(line.length - 1);
        std::copy_n(line.moves + 1, length, moves);
    }
};

}  // namespace vatro
