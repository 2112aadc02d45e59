// src/search/search_root.cpp - the root: its moves before the first iteration and in each one.
#include "board/move_generation.h"
#include "search/root.h"
#include "search/search_moves.h"

namespace vatro {

/// Every legal move gets the score of the position after it; the first best one becomes the line.
template <Colour Us>
Searcher::RootScan Searcher::scanRoot() {
    constexpr Colour Them = Side<Us>::Them;
    RootScan scan;
    MoveList list;
    generateLegalMoves<Us>(board, computePins<Us>(board, findCheckers<Us>(board)), list);
    scan.legalMoves = list.count;
    for (const ScoredMove& entry : list) {
        UndoRecord undo;
        board.record().movePlayed = entry.move;
        makeMove<Us>(board, entry.move, undo);
        int theirs = 0;
        int score;
        if (board.totalCount() <= MaxTablebasePieces && probeTablebases<Them>(true, theirs)) {
            ++scan.resolved;
            score = theirs > 0 ? 1 - theirs : theirs < 0 ? -theirs - 1 : DrawScore;
        } else {
            score = -evaluateHere(-MateScore, MateScore);
        }
        unmakeMove<Us>(board, entry.move, undo);
        if (score > scan.score) {
            scan.score = score;
            scan.best.setTo(entry.move);
        }
    }
    return scan;
}

template <Colour Us>
int Searcher::searchRoot(int alpha, int beta, int depth, PrincipalVariation& line) {
    constexpr int MeasuredDepth = 6;  // from here on the first two moves are timed
    constexpr int EasyMargin = 199;   // centipawns by which an easy move beats the second; tuned
    nodes.store(nodes.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    if (threadIndex == 0) easyFlag = false;
    const NodeBounds bounds{{board.totalCount(Side<Us>::Them) == 1 ? 0 : -MateScore,
                             board.totalCount(Us) == 1 ? 0 : MateScore - 1},
                            alpha,
                            beta};
    const SquareMask checkers = findCheckers<Us>(board);
    const bool measures = !checkers && depth >= MeasuredDepth;
    const std::int32_t startTime = measures ? context.timeControl.searchTime() : 0;

    MovePicker picker(board, computePins<Us>(board, checkers), MovePicker::Phase::AllMoves);
    picker.prefer(line.first(), NoMove);
    int best = -MateScore;
    int secondBest = -MateScore;
    int number = 0;
    PrincipalVariation childLine;
    UndoRecord undo;
    while (const Move move = picker.next<Us>()) {
        ++number;
        handDown(line, move, 2, childLine);
        const bool reduces = !checkers && isReducible<Us>(board, move, number, depth);
        board.record().movePlayed = move;
        makeMove<Us>(board, move, undo);
        const int score =
            searchReduced<Us>(std::max(best, alpha), beta, 1, depth, number, reduces, childLine);
        unmakeMove<Us>(board, move, undo);
        if (stopped()) return best;
        if (score >= beta) {
            ++statistics.cutoffs;
            if (number == 1) ++statistics.cutoffsFirst;
            updateKillers(board, move);
            store(bounds, 0, depth, score, move);
            return score;
        }
        if (score > best) {
            best = score;
            if (score > alpha) {
                line.setTo(move, childLine);
                if (threadIndex == 0) {
                    context.player.printThinking(static_cast<unsigned>(depth), score, line);
                }
            }
        } else {
            secondBest = std::max(secondBest, score);
        }
        if (measures && number == 2) {
            firstMovesTime = context.timeControl.searchTime() - startTime;
        }
    }
    if (number == 0) return checkers ? -MateScore : DrawScore;
    if (threadIndex == 0 && number > 1 && best > secondBest + EasyMargin) easyFlag = true;
    store(bounds, 0, depth, best, line.first());
    return best;
}

template Searcher::RootScan Searcher::scanRoot<White>();
template Searcher::RootScan Searcher::scanRoot<Black>();
template int Searcher::searchRoot<White>(int, int, int, PrincipalVariation&);
template int Searcher::searchRoot<Black>(int, int, int, PrincipalVariation&);

}  // namespace vatro
