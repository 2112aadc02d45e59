// src/search/search_moves.h - trying the moves of a node one by one.
#pragma once

#include "board/draw.h"
#include "board/make_move.h"
#include "board/move_picker.h"
#include "search/killers.h"
#include "search/node.h"

namespace vatro {

/// Prepares the line for a child: the rest of the node's line when it begins with the move.
inline void handDown(const PrincipalVariation& line,
                     Move move,
                     unsigned shortest,
                     PrincipalVariation& childLine) {
    childLine.length = 0;
    if (line.length >= shortest && line.moves[0] == move) childLine.setToRestOf(line);
}

template <Colour Us>
inline int Searcher::searchChild(
    int a, int b, int height, int depth, int number, PrincipalVariation& line) {
    constexpr Colour Them = Side<Us>::Them;
    if (depth == 0) return -quiescence<Them>(-b, -a, height, line);
    if (number == 1) return -alphaBeta<Them>(-b, -a, height, depth, line);
    int score = -alphaBeta<Them>(-a - 1, -a, height, depth, line);
    if (a + 1 != b && score > a) score = -alphaBeta<Them>(-b, -a, height, depth, line);
    return score;
}

/// Late quiet moves are searched less deep first; a pawn that reaches the seventh rank is not.
template <Colour Us>
inline bool isReducible(const Board_0x88& board, Move move, int number, int depth) {
    if (number < 2 || depth < 3 || !isQuiet(board, move)) return false;
    return board.pieceOn[fromSquare(move)] != Pawn || rankOf64(to64(move)) != Side<Us>::SeventhRank;
}

template <Colour Us>
inline int Searcher::searchReduced(
    int a, int b, int height, int depth, int number, bool reduces, PrincipalVariation& line) {
    if (reduces) {
        const int score = searchChild<Us>(a, b, height, depth - 2, number, line);
        if (score <= a) return score;
    }
    return searchChild<Us>(a, b, height, depth - 1, number, line);
}

/// The move loop of alphaBeta and, without reductions, of searchEvasions. Returns a score below
/// every possible one, and stores nothing, when there was no move.
template <Colour Us, bool Reduces>
inline int Searcher::searchMoves(
    MovePicker& picker, const NodeBounds& bounds, int height, int depth, PrincipalVariation& line) {
    int best = -MateScore;
    int number = 0;
    PrincipalVariation childLine;
    UndoRecord undo;
    while (const Move move = picker.next<Us>()) {
        ++number;
        // A child beyond the horizon does not ask the table, unless in check.
        if (depth > 1) context.transpositionTable.prefetch(likelyKeyAfter(board, move));
        handDown(line, move, 2, childLine);
        const bool reduces = Reduces && isReducible<Us>(board, move, number, depth);
        board.record().movePlayed = move;
        makeMove<Us>(board, move, undo);
        const int score = searchReduced<Us>(std::max(best, bounds.alpha), bounds.beta, height + 1,
                                            depth, number, reduces, childLine);
        unmakeMove<Us>(board, move, undo);
        if (stopped()) return AbortScore;
        if (score >= bounds.beta) {
            ++statistics.cutoffs;
            if (number == 1) ++statistics.cutoffsFirst;
            updateKillers(board, move);
            store(bounds, height, depth, score, move);
            return score;
        }
        if (score > best) {
            best = score;
            if (score > bounds.alpha) line.setTo(move, childLine);
        }
    }
    if (number == 0) return NoMoveScore;
    store(bounds, height, depth, best, line.first());
    return best;
}

}  // namespace vatro
