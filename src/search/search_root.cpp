// search/search_root.cpp - the root: its moves before the first iteration and in each one.
#include <algorithm>

#include "board/move_generation.h"
#include "search/root.h"
#include "search/search_moves.h"

namespace vatro {

bool Searcher::isAllowedAtRoot(Move move) const {
    const std::vector<Move>& allowed = context.limits.rootMoves;
    if (!allowed.empty() && std::find(allowed.begin(), allowed.end(), move) == allowed.end()) {
        return false;
    }
    const auto found = rankedLines.begin();
    return std::none_of(found, found + linesFound,
                        [move](const RankedLine& other) { return other.line.first() == move; });
}

/// The moves of a picker that are allowed at the root. Thread 0 reports each.
class Searcher::RootPicker {
  public:
    RootPicker(MovePicker& movePicker, const Searcher& root, int iterationDepth)
        : picker(movePicker), searcher(root), depth(iterationDepth) {}

    template <Colour Us>
    Move next() {
        do {
            latest = picker.next<Us>();
        } while (latest && !searcher.isAllowedAtRoot(latest));
        if (latest && searcher.threadIndex == 0) {
            searcher.context.reporter.reportRootMove({static_cast<unsigned>(depth), latest, ++count,
                                                      searcher.context.timeControl.searchTime()});
        }
        return latest;
    }
    template <typename Visit>
    void announce(Move given, Visit visit) {
        picker.announce(given, visit);
    }
    /// The best score is then not that of the position.
    bool leavesOutMoves() const {
        return searcher.linesFound > 0 || !searcher.context.limits.rootMoves.empty();
    }

    Move latest = NoMove;

  private:
    MovePicker& picker;
    const Searcher& searcher;
    const int depth;
    unsigned count = 0;
};

/// Every legal move gets the score of the position after it; the first best one becomes the line.
template <Colour Us>
Searcher::RootScan Searcher::scanRoot() {
    constexpr Colour Them = Side<Us>::Them;
    RootScan scan;
    MoveList list;
    generateLegalMoves<Us>(board, computePins<Us>(board, findCheckers<Us>(board)), list);
    for (const ScoredMove& entry : list) {
        if (isAllowedAtRoot(entry.move())) scan.moves.add(entry.move());
    }
    for (unsigned i = 0; i < scan.moves.count; ++i) {
        ScoredMove& entry = scan.moves.moves[i];
        const int score = scoreAfter<Us>(entry.move(), [&] {
            if (board.totalCount() <= MaxTablebasePieces) {
                if (const std::optional<int> theirs = probeTablebases<Them>(true)) {
                    ++scan.resolved;
                    return -scoreFromTable(*theirs, 1);
                }
            }
            return -evaluateHere({-MateScore, MateScore, 1, 0});
        });
        entry = {entry.move(), score};
        if (score > scan.score) {
            scan.score = score;
            scan.best.setTo(entry.move());
        }
        if (stopped()) break;  // reading tables can take long; one move is enough to play
    }
    return scan;
}

template <Colour Us>
int Searcher::searchRoot(const NodeWindow& window, PrincipalVariation& line) {
    constexpr int EasyMargin = 199;  // centipawns by which an easy move beats the second; tuned
    countNode();
    const bool isMain = threadIndex == 0;
    bestStandsOut = false;

    // 1. The node. Its window is that of the iteration, which knows what scores are possible.
    const SquareMask checkers = findCheckers<Us>(board);
    const Node node{window,
                    {board.totalCount(Side<Us>::Them) == 1 ? DrawScore : -MateScore,
                     board.totalCount(Us) == 1 ? DrawScore : MateScore - 1},
                    NoMove,
                    checkers != 0};
    const bool measures = !node.inCheck && node.depth >= EarlyStopDepth;
    const std::int32_t startTime = measures ? context.timeControl.searchTime() : 0;

    // 2. What is noted after each move that does not cut off. Thread 0 reports a better line.
    const auto report = [&](int score, Bound bound, const PrincipalVariation& best) {
        context.player.printThinking(
            {static_cast<unsigned>(node.depth), score, bound, linesFound + 1, best});
    };
    int best = -MateScore;
    int secondBest = -MateScore;
    int moves = 0;
    const auto afterMove = [&](int score) {
        ++moves;
        if (score <= best) {
            secondBest = std::max(secondBest, score);
        } else {
            best = score;
            if (isMain && score > node.alpha) report(score, Bound::Exact, line);
        }
        if (measures && moves == 2) {
            firstMovesTime = context.timeControl.searchTime() - startTime;
        }
    };

    // 3. The moves. A stopped search keeps the best of those it has finished.
    MovePicker picker(board, computePins<Us>(board, checkers));
    picker.prefer(line.first());
    RootPicker allowed(picker, *this, node.depth);
    const int score = searchMoves<Us>(allowed, node, line, afterMove);
    if (score == AbortScore) return best;
    if (isMain && score <= node.alpha) report(score, Bound::UpperBound, line);
    if (isMain && score >= node.beta) {
        PrincipalVariation cutting;  // the line keeps its moves, with which the search goes on
        cutting.setTo(allowed.latest);
        report(score, Bound::LowerBound, cutting);
    }
    bestStandsOut = score < node.beta && moves > 1 && best > secondBest + EasyMargin;
    return score;
}

template Searcher::RootScan Searcher::scanRoot<White>();
template Searcher::RootScan Searcher::scanRoot<Black>();
template int Searcher::searchRoot<White>(const NodeWindow&, PrincipalVariation&);
template int Searcher::searchRoot<Black>(const NodeWindow&, PrincipalVariation&);

}  // namespace vatro
