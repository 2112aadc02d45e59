// search/node.h - a node of the search, and what every node does first: time, window, table.
#pragma once

#include <algorithm>

#include "board/attacks.h"
#include "eval/evaluate.h"
#include "search/mate_score.h"
#include "search/searcher.h"

namespace vatro {

/// A node that is being searched. Its window is narrowed to the scores that are possible there:
/// nobody is mated sooner than the distance from the root allows, and a bare king does not win.
struct Searcher::Node : NodeWindow {
    ScoreLimits limits;
    Move tableMove = NoMove;  // what the table, or a shallower search, would play
    bool inCheck = false;
};

template <Colour Us>
inline Searcher::Node Searcher::narrowed(NodeWindow window) const {
    ScoreLimits limits = {window.height - MateScore, MateScore - 1 - window.height};
    int floor = limits.lowest - 1;
    int ceiling = limits.highest + 1;
    if (board.totalCount(Side<Us>::Them) == 1) {
        limits.lowest = DrawScore;
        floor = DrawScore - 1;
    }
    if (board.totalCount(Us) == 1) {
        limits.highest = DrawScore;
        ceiling = DrawScore + 1;
    }
    window.alpha = std::max(window.alpha, floor);
    window.beta = std::min(window.beta, ceiling);
    return {window, limits};
}

/// Adds one to the node count, which other threads read meanwhile. Gives the new count.
inline std::uint64_t Searcher::countNode() {
    const std::uint64_t count = nodes.load(std::memory_order_relaxed) + 1;
    nodes.store(count, std::memory_order_relaxed);
    return count;
}

/// Counts the node. False when the search has to end: the time is up.
///
/// Thread 0 looks at the clock each time its own count reaches a multiple of an interval; how far
/// the helpers have come does not matter, and their counts are not read.
inline bool Searcher::enterNode() { return (countNode() & timeCheckMask) != 0 || lookAtClock(); }

/// Ends the search when the time is up; false then. Helpers have no clock.
inline bool Searcher::lookAtClock() {
    if (threadIndex != 0 || stopped() || !context.player.timeout()) return true;
    stopFlag = true;
    return false;
}

inline int Searcher::evaluateHere(const NodeWindow& window) {
    return evaluate(board, evalMemory, window.alpha, window.beta);
}

inline void Searcher::store(const Node& node, int score, Move move) {
    const unsigned rootPly = board.ply - static_cast<unsigned>(node.height);
    context.transpositionTable.store(
        board.record().key,
        {move, static_cast<std::int16_t>(scoreForTable(score, node.height)),
         boundOf(score, node, node.limits), static_cast<std::uint8_t>(node.depth),
         static_cast<std::uint8_t>(rootPly)});
}

constexpr int MaxTablebasePieces = 5;  // kings included

/// The last record is in use: the line cannot get longer.
inline bool isLineFull(const Board_0x88& board) { return board.ply + 1 >= PlyRecordCount; }

}  // namespace vatro
