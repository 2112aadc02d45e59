// search/search_moves.h - trying the moves of a node one by one.
#pragma once

#include "board/draw.h"
#include "board/make_move.h"
#include "board/move_picker.h"
#include "search/killers.h"
#include "search/node.h"

namespace vatro {

/// The best score of a node so far. The line that leads to it is written into the node's line.
class BestMove {
  public:
    /// `floor` is what the side to move can have without any of the moves.
    BestMove(const NodeWindow& nodeWindow, int floor, PrincipalVariation& nodeLine)
        : window(nodeWindow), best(floor), line(nodeLine) {}

    int score() const { return best; }
    /// What the next move has to beat.
    int alpha() const { return std::max(best, window.alpha); }

    /// Takes in the score of a move, with the line that follows it. True when it reaches beta: the
    /// other moves need not be tried.
    bool cutsOff(Move move, int moveScore, const PrincipalVariation& childLine) {
        if (moveScore >= window.beta) return true;
        if (moveScore > best) {
            best = moveScore;
            if (moveScore > window.alpha) line.setTo(move, childLine);
        }
        return false;
    }

  private:
    const NodeWindow& window;
    int best;
    PrincipalVariation& line;
};

/// Prepares the line for a child: the rest of the node's line when it begins with the move.
inline void handDown(const PrincipalVariation& line, Move move, PrincipalVariation& childLine) {
    childLine.length = 0;
    if (!line.empty() && line.moves[0] == move) childLine.setToRestOf(line);
}

/// Fetches what the transposition table has on the position after a move.
inline void Searcher::prefetchAfter(Move move) const {
    context.transpositionTable.prefetch(likelyKeyAfter(board, move));
}

/// Plays the move, lets `search` score the position after it, and takes the move back.
template <Colour Us, typename Search>
inline int Searcher::scoreAfter(Move move, Search search) {
    UndoRecord undo;
    board.record().movePlayed = move;
    makeMove<Us>(board, move, undo);
    const int score = search();
    unmakeMove<Us>(board, move, undo);
    return score;
}

/// Searches a child in its own window and gives its score as the parent, `Us`, sees it. The first
/// move is expected to be the best; of a later one it is asked first whether it is better at all.
template <Colour Us>
inline int Searcher::searchChild(const NodeWindow& child, bool isFirst, PrincipalVariation& line) {
    constexpr Colour Them = Side<Us>::Them;
    if (child.depth == 0) return -quiescence<Them>(child, line);
    if (!isFirst && !child.isNull()) {
        const int score = alphaBeta<Them>(child.atBeta(), line);
        if (score >= child.beta) return -score;
    }
    return -alphaBeta<Them>(child, line);
}

/// Late quiet moves are searched less deep first; a pawn that reaches the seventh rank is not.
template <Colour Us>
inline bool isReducible(const Board_0x88& board, Move move) {
    if (!isQuiet(board, move)) return false;
    return board.pieceOn[fromSquare(move)] != Pawn || rankOf(to64(move)) != Side<Us>::SeventhRank;
}

/// The move loop of every node but those of the quiescence search. Calls `afterMove` with the score
/// of each move that did not cut off.
template <Colour Us, typename Picker, typename AfterMove>
inline int Searcher::searchMoves(Picker& picker,
                                 const Node& node,
                                 PrincipalVariation& line,
                                 AfterMove afterMove) {
    constexpr int ReducibleDepth = 3;  // and deeper; tuned
    BestMove best(node, -MateScore, line);
    PrincipalVariation childLine;
    bool isFirst = true;
    while (const Move move = picker.template next<Us>()) {
        // Fetched together, entries take little longer than one. The table is not asked beyond the
        // horizon, except in check.
        if (node.depth > 1) picker.announce(move, [this](Move soon) { prefetchAfter(soon); });
        handDown(line, move, childLine);
        const int alpha = best.alpha();
        const bool reduces = !node.inCheck && !isFirst && node.depth >= ReducibleDepth &&
                             isReducible<Us>(board, move);
        const int score = scoreAfter<Us>(move, [&, alpha, reduces, isFirst] {
            const NodeWindow child = node.forChild(alpha, node.beta, node.depth - 1);
            if (reduces) {
                const int early =
                    searchChild<Us>(child.withDepth(child.depth - 1), isFirst, childLine);
                if (early <= alpha) return early;
            }
            return searchChild<Us>(child, isFirst, childLine);
        });
        if (stopped()) return AbortScore;
        if (best.cutsOff(move, score, childLine)) {
            statistics.cutoffs.count(isFirst);
            updateKillers(board, move);
            store(node, score, move);
            return score;
        }
        afterMove(score);
        isFirst = false;
    }
    if (isFirst) return node.inCheck ? node.height - MateScore : DrawScore;  // mate, stalemate
    bool hasSeenAllMoves = true;
    if constexpr (requires { picker.leavesOutMoves(); }) hasSeenAllMoves = !picker.leavesOutMoves();
    if (hasSeenAllMoves) store(node, best.score(), line.first());
    return best.score();
}

}  // namespace vatro
