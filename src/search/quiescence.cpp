// src/search/quiescence.cpp - captures and queen promotions until the position is quiet.
//
// The transposition table is not used here, and cutoffs make no killers.
#include "search/search_moves.h"

namespace vatro {
namespace {

/// A capture or a promotion to a queen: what this search would try anyway.
bool isTactical(const Board_0x88& board, Move move) {
    return board.pieceOn[toSquareOf(move)] != NoPiece || typeOf(move) == EnPassant ||
           (isPromotion(move) && promotionPiece(move) == Queen);
}

}  // namespace

template <Colour Us>
int Searcher::quiescence(int alpha, int beta, int height, PrincipalVariation& line) {
    if (const SquareMask checkers = findCheckers<Us>(board)) {
        return searchEvasions<Us>(checkers, alpha, beta, height, 1, line);
    }
    if (!enterNode()) return AbortScore;
    ++statistics.qsNodes;
    DrawReason reason;
    if (isDraw(board, reason)) return DrawScore;
    const NodeBounds bounds = boundsAt<Us>(alpha, beta, height);
    if (bounds.isEmpty()) return bounds.alpha;

    int best = evaluateHere(bounds.alpha, bounds.beta);  // the side may leave it at that
    if (best >= bounds.beta || isLineFull(board)) return best;

    MovePicker picker(board, computePins<Us>(board, 0), MovePicker::Phase::Captures);
    if (!line.empty() && isTactical(board, line.moves[0])) picker.prefer(line.moves[0], NoMove);
    int number = 0;
    PrincipalVariation childLine;
    UndoRecord undo;
    while (const Move move = picker.next<Us>()) {
        ++number;
        int gain = 0;
        if (isBadCapture<Us>(board, move, gain)) continue;
        if (best + gain <= bounds.alpha) continue;  // even the whole gain is too little
        handDown(line, move, 1, childLine);
        board.record().movePlayed = move;
        makeMove<Us>(board, move, undo);
        const int score = -quiescence<Side<Us>::Them>(-bounds.beta, -std::max(best, bounds.alpha),
                                                      height + 1, childLine);
        unmakeMove<Us>(board, move, undo);
        if (stopped()) return AbortScore;
        if (score >= bounds.beta) {
            ++statistics.qsCutoffs;
            if (number == 1) ++statistics.qsCutoffsFirst;
            return score;
        }
        if (score > best) {
            best = score;
            if (score > bounds.alpha) line.setTo(move, childLine);
        }
    }
    return best;
}

template int Searcher::quiescence<White>(int, int, int, PrincipalVariation&);
template int Searcher::quiescence<Black>(int, int, int, PrincipalVariation&);

}  // namespace vatro
