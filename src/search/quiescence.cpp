// search/quiescence.cpp - captures and queen promotions until the position is quiet.
//
// The transposition table is not used here, and cutoffs make no killers.
#include <utility>

#include "board/capture_picker.h"
#include "search/search_moves.h"

namespace vatro {
namespace {

/// A capture or a promotion to a queen: what this search would try anyway.
bool isTactical(const Board_0x88& board, Move move) {
    return board.pieceOn[toSquare(move)] != NoPiece || typeOf(move) == EnPassant ||
           (isPromotion(move) && promotionPiece(move) == Queen);
}

}  // namespace

template <Colour Us>
int Searcher::quiescence(const NodeWindow& window, PrincipalVariation& line) {
    if (const SquareMask checkers = findCheckers<Us>(board)) {
        return searchEvasions<Us>(checkers, window.withDepth(1), line);
    }
    if (!enterNode()) return AbortScore;
    ++statistics.qsNodes;
    DrawReason reason;
    if (isDraw(board, reason)) return DrawScore;
    const Node node = narrowed<Us>(window);
    if (node.isEmpty()) return node.alpha;

    const int standPat = evaluateHere(node);  // the side to move need not capture
    if (standPat >= node.beta || isLineFull(board)) return standPat;

    CapturePicker picker(board);
    if (!line.empty() && isTactical(board, line.moves[0])) picker.prefer(line.moves[0]);
    BestMove best(node, standPat, line);
    PrincipalVariation childLine;
    bool isFirst = true;
    while (const Move move = picker.next<Us>(node.alpha - best.score())) {
        const bool wasFirst = std::exchange(isFirst, false);
        int gain = 0;
        if (isBadCapture<Us>(board, move, gain)) continue;
        if (best.score() + gain <= node.alpha) continue;  // even the whole gain is too little
        handDown(line, move, childLine);
        const NodeWindow child = node.forChild(best.alpha(), node.beta, 0);
        const int score = scoreAfter<Us>(
            move, [&, child] { return -quiescence<Side<Us>::Them>(child, childLine); });
        if (stopped()) return AbortScore;
        if (best.cutsOff(move, score, childLine)) {
            statistics.qsCutoffs.count(wasFirst);
            return score;
        }
    }
    return best.score();
}

template int Searcher::quiescence<White>(const NodeWindow&, PrincipalVariation&);
template int Searcher::quiescence<Black>(const NodeWindow&, PrincipalVariation&);

}  // namespace vatro
