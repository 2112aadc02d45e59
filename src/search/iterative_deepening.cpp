// src/search/iterative_deepening.cpp - searching the root deeper and deeper.
//
// Thread 0 decides when to stop; helpers run the same loop on every second depth and only feed the
// transposition table.
#include <algorithm>

#include "board/console.h"
#include "search/node.h"
#include "search/root.h"

namespace vatro {
namespace {

constexpr int AspirationWindow = 30;  // centipawns on either side; tuned
constexpr int EarlyStopDepth = 6;     // no time-based stop before this depth; tuned
constexpr int EasyMoveShare = 8;      // an easy move is played after 1/8 of the time; tuned

/// The largest odd number of plies within `depth` or just above, and the same for even ones.
constexpr int oddUpTo(int depth) { return depth | 1; }
constexpr int evenUpTo(int depth) { return depth + (depth & 1); }
static_assert(oddUpTo(5) == 5 && oddUpTo(6) == 7 && evenUpTo(5) == 6 && evenUpTo(6) == 6);

}  // namespace

SearchResult Searcher::iterativeDeepening(const Board_0x88& gameBoard) {
    board = gameBoard;
    statistics = {};
    nodes = 0;
    easyFlag = false;
    firstMovesTime = 0;
    iterationDepth = 0;
    return board.sideToMove == White ? iterate<White>() : iterate<Black>();
}

template <Colour Us>
SearchResult Searcher::iterate() {
    const bool isMain = threadIndex == 0;
    const bool timed = context.timeControl.timed;
    RootScan root = scanRoot<Us>();
    PrincipalVariation& best = root.best;
    int previous = root.score;
    if (root.isResolved()) {
        if (!isMain) return {};
        context.player.printThinking(0, previous, best);
        context.player.printStatistics();
        return timed && !discardFlag ? SearchResult{best.first(), NoMove} : SearchResult{};
    }

    int step = isMain ? 1 : 2;
    for (int depth = 1 + static_cast<int>(threadIndex % 2);
         depth <= static_cast<int>(MaxDepth) && !stopped(); depth += step) {
        iterationDepth = static_cast<unsigned>(depth);
        bestPossible = board.totalCount(Us) == 1 ? 0 : MateScore - oddUpTo(depth);
        worstPossible = board.totalCount(Side<Us>::Them) == 1 ? 0 : evenUpTo(depth) - MateScore;
        PrincipalVariation line = best;
        easyAtDepth[depth] = false;
        const int score = searchWindow<Us>(previous, depth, line);
        if (score > MateThreshold || score < -MateThreshold) step = 1;
        if (!line.empty()) {
            best = line;
            previous = score;
        }
        if (!isMain || stopped()) continue;
        easyAtDepth[depth] = easyFlag;
        if (shouldStop(depth, root.legalMoves, previous, best)) stopFlag = true;
    }
    if (!isMain) return {};
    context.player.printStatistics();
    if (!timed || discardFlag) return {};
    return {best.first(), best.second()};
}

/// Searches the root with a narrow window around the previous score, and with wider ones when the
/// score falls outside.
template <Colour Us>
int Searcher::searchWindow(int previous, int depth, PrincipalVariation& line) {
    const int lowest = worstPossible - 1;
    const int highest = bestPossible + 1;
    const int alpha = std::max(previous - AspirationWindow, lowest);
    const int beta = std::min(previous + AspirationWindow, highest);
    const auto failsHigh = [&](int score) { return score >= beta && score <= bestPossible; };
    const auto failsLow = [&](int score) { return score <= alpha && score >= worstPossible; };
    int score = searchRoot<Us>(alpha, beta, depth, line);
    if (stopped()) return score;
    if (failsHigh(score)) {
        score = searchRoot<Us>(alpha, highest, depth, line);
        if (failsLow(score)) score = searchRoot<Us>(lowest, highest, depth, line);
    } else if (failsLow(score)) {
        score = searchRoot<Us>(lowest, beta, depth, line);
        if (failsHigh(score)) score = searchRoot<Us>(lowest, highest, depth, line);
    }
    return score;
}

/// Thread 0's rules for ending the search after an iteration.
bool Searcher::shouldStop(int depth,
                          unsigned legalMoves,
                          int score,
                          const PrincipalVariation& best) {
    const TimeControl& control = context.timeControl;
    const auto report = [&best](const std::string& reason) {
        say("# " + reason + ": " + moveToText(best.first()) + '\n');
        return true;
    };
    if (depth == 1 && legalMoves == 1) return report("forced move");
    if (depth >= EarlyStopDepth && control.timed) {
        const std::int32_t allotted = control.timeForMove;
        const std::int32_t used = control.searchTime();
        if (easyAtDepth[depth] && easyAtDepth[depth - 1] && used >= allotted / EasyMoveShare) {
            return report("easy move");
        }
        if (std::int64_t{allotted} - used < std::int64_t{firstMovesTime} * 3 / 2) {
            say("# probably not enough time left for another iteration\n");
            return true;
        }
    }
    if (score == bestPossible) {
        if (score == DrawScore) return report("forced draw");
        return report("forced mate in " + std::to_string(MateScore - score) + " plies");
    }
    if (score == worstPossible && score < 0) {
        return report("getting mated in " + std::to_string(score + MateScore) + " plies");
    }
    return control.depthLimited && control.maxDepth == static_cast<std::uint32_t>(depth);
}

}  // namespace vatro
