// src/search/node.h - what every node of the search does first: bounds, table, time.
#pragma once

#include <algorithm>

#include "board/attacks.h"
#include "eval/evaluate.h"
#include "eval/scores.h"
#include "search/searcher.h"

namespace vatro {

/// The window of a node, narrowed to the scores that are possible there: nobody is mated sooner
/// than the distance from the root allows, and a bare king does not win.
struct Searcher::NodeBounds {
    ScoreLimits limits;
    int alpha;
    int beta;

    bool isEmpty() const { return beta <= alpha; }
    bool isNull() const { return alpha + 1 == beta; }
};

template <Colour Us>
inline Searcher::NodeBounds Searcher::boundsAt(int alpha, int beta, int height) const {
    NodeBounds bounds{{height - MateScore, MateScore - 1 - height}, 0, 0};
    int floor = height - MateScore - 1;
    int ceiling = MateScore - height;
    if (board.totalCount(Side<Us>::Them) == 1) {
        bounds.limits.lowest = 0;
        floor = -1;
    }
    if (board.totalCount(Us) == 1) {
        bounds.limits.highest = 0;
        ceiling = 1;
    }
    bounds.alpha = std::max(alpha, floor);
    bounds.beta = std::min(beta, ceiling);
    return bounds;
}

/// Counts the node. False when the search has to end: the time is up.
///
/// The helpers' nodes count in blocks of TimeCheckInterval here, so that the sum of all threads is
/// a multiple of it exactly when thread 0's own count is, and thread 0 need not read theirs.
inline bool Searcher::enterNode() {
    constexpr std::uint64_t TimeCheckInterval = 4096;  // nodes; a power of two
    const std::uint64_t count = nodes.load(std::memory_order_relaxed) + 1;
    nodes.store(count, std::memory_order_relaxed);
    if (count % TimeCheckInterval != 0 || threadIndex != 0 || !context.player.timeout())
        return true;
    stopFlag = true;
    return false;
}

inline int Searcher::evaluateHere(int alpha, int beta) {
    return evaluate(board, evalMemory, alpha, beta);
}

inline void Searcher::store(const NodeBounds& bounds, int height, int depth, int score, Move move) {
    context.transpositionTable.store(board.record().key, board.ply, bounds.limits,
                                     {bounds.alpha, bounds.beta, height, depth}, score, move);
}

/// What a move loop returns when there was no legal move; below every score.
constexpr int NoMoveScore = -2 * AbortScore;

constexpr int MaxTablebasePieces = 5;  // kings included

/// The last record is in use: the line cannot get longer.
inline bool isLineFull(const Board_0x88& board) { return board.ply + 1 >= PlyRecordCount; }

}  // namespace vatro
