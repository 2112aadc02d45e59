// tools/perft.h - counting the leaves of the tree of legal moves.
//
// The commands time the count with the engine's clock, so a run is taken in steps: prepare the
// table and the board, count, print the totals.
#pragma once

#include <cstdint>
#include <string>

#include "board/board.h"
#include "tools/perft_hash.h"
#include "tools/stop_check.h"

namespace vatro {

/// The deepest count that the board's stack of perft keys allows.
constexpr unsigned MaxPerftDepth = PerftKeyCount - 1;

/// Computes the keys of the current position from scratch, for a board that a game has been played
/// on: the perft key is not kept up to date by the game.
void preparePerftKeys(Board_0x88& board);

/// Leaves at `depth` (1 to MaxPerftDepth). `nodes` grows by the positions visited; those that the
/// table answers for are counted, the ones below them are not. The table must be prepared. A run
/// that is stopped gives the leaves that it has counted.
std::uint64_t perftCount(Board_0x88& board,
                         unsigned depth,
                         PerftHashTable& table,
                         std::uint64_t& nodes,
                         StopCheck& stop);

/// The same, with a line on standard output for each move of the root: the move and its leaves. A
/// move whose count is stopped has no line and adds no leaves.
std::uint64_t divideRoot(Board_0x88& board,
                         unsigned depth,
                         PerftHashTable& table,
                         std::uint64_t& nodes,
                         StopCheck& stop);

/// Events per second, 0 for a time of 0.
std::uint64_t perSecond(std::uint64_t events, std::uint64_t centiseconds);

/// What a run has counted and how long it took.
struct PerftTotals {
    std::uint64_t leaves;
    std::uint64_t nodes;
    std::uint64_t elapsedCs;
    double hashFullPercentage;
};

/// The five closing lines of a run. `prefix` opens the first four: "# " for perft, "" for divide.
std::string perftTotalsText(const PerftTotals& totals, const char* prefix);

}  // namespace vatro
