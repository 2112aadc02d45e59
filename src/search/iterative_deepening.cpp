// search/iterative_deepening.cpp - searching the root deeper and deeper.
//
// Thread 0 decides when to stop; helpers run the same loop on every second depth and only feed the
// transposition table.
#include <algorithm>

#include "board/selection_sort.h"
#include "search/node.h"
#include "search/root.h"

namespace vatro {
namespace {

constexpr int AspirationWindow = 30;  // centipawns on either side; tuned
constexpr int EasyMoveShare = 8;      // an easy move is played after 1/8 of the time; tuned

// Nodes between two looks at the clock, powers of two. On a busy machine the largest interval takes
// up to 20 ms (measured), as long as a short clock holds. While the tables' memory is not there, a
// node may wait for the system to find and zero a page.
constexpr std::uint64_t TimeCheckInterval = 4096;
constexpr std::uint64_t ShortTimeInterval = 256;
constexpr std::uint64_t ColdTablesInterval = 16;
constexpr std::int32_t ShortTime = 10;  // centiseconds for the move

/// The largest odd number of plies within `depth` or just above, and the same for even ones.
constexpr int oddUpTo(int depth) { return depth | 1; }
constexpr int evenUpTo(int depth) { return depth + (depth & 1); }
static_assert(oddUpTo(5) == 5 && oddUpTo(6) == 7 && evenUpTo(5) == 6 && evenUpTo(6) == 6);

}  // namespace

void Searcher::prepare(const Board_0x88& gameBoard) {
    stopFlag = false;
    discardFlag = false;
    board = gameBoard;
    statistics = {};
    nodes = 0;
    tbHits = 0;
    easyIterations = 0;
    firstMovesTime = 0;
    iterationDepth = 0;
    linesFound = 0;
    rankedLines.assign(context.limits.lines, {});
    // A key shows later that the search has been there.
    for (unsigned ply = board.ply + 1; ply < PlyRecordCount; ++ply) {
        board.plyRecords[ply].key = 0;
    }
}

unsigned Searcher::selectiveDepth() const {
    unsigned ply = board.ply + 1;
    while (ply < PlyRecordCount && board.plyRecords[ply].key != 0)
        ++ply;
    return ply - 1 - board.ply;
}

std::uint64_t Searcher::timeCheckInterval() const {
    const TimeControl& control = context.timeControl;
    const SearchLimits& limits = context.limits;
    if (limits.nodes > 0) return 1;
    if (!control.timed && limits.timeCs == 0) return TimeCheckInterval;
    if (!context.tablesAreWarm) return ColdTablesInterval;
    const std::int32_t time = control.timed ? control.timeForMove.load() : limits.timeCs;
    return time < ShortTime ? ShortTimeInterval : TimeCheckInterval;
}

SearchResult Searcher::iterativeDeepening() {
    return board.sideToMove == White ? iterate<White>() : iterate<Black>();
}

template <Colour Us>
SearchResult Searcher::iterate() {
    const bool isMain = threadIndex == 0;
    timeCheckMask = timeCheckInterval() - 1;
    RootScan root = scanRoot<Us>();
    PrincipalVariation& best = root.best;
    int previous = root.score;

    // 1. Nothing to search where the tablebases know every move.
    if (root.isResolved()) {
        if (!isMain) return {};
        reportResolved(root);
        context.player.printStatistics();
        return discardFlag ? SearchResult{} : SearchResult{best.first(), NoMove};
    }

    // 2. The iterations. Helpers leave out every other depth until a mate is seen.
    int step = isMain ? 1 : 2;
    for (int depth = 1 + static_cast<int>(threadIndex % 2);
         depth <= static_cast<int>(MaxDepth) && !stopped(); depth += step) {
        iterationDepth = depth;
        bestPossible = board.totalCount(Us) == 1 ? DrawScore : MateScore - oddUpTo(depth);
        worstPossible =
            board.totalCount(Side<Us>::Them) == 1 ? DrawScore : evenUpTo(depth) - MateScore;
        PrincipalVariation line = best;
        const int score = searchIteration<Us>(previous, depth, line);
        if (isMateScore(score)) step = 1;
        if (!line.empty()) {  // a stopped iteration counts as far as it got
            best = line;
            previous = score;
        }
        if (!isMain || stopped()) continue;
        easyIterations = bestStandsOut ? easyIterations + 1 : 0;
        searchOtherLines<Us>(depth, {best, previous}, root.moves.count);
        if (stopped()) continue;
        if (const auto stop = reasonToStop(depth, root.moves.count, previous, best.first())) {
            context.reporter.reportStop(*stop);
            stopFlag = true;
        }
    }

    // 3. Thread 0 has the result.
    if (!isMain) return {};
    context.player.printStatistics();
    if (discardFlag) return {};
    return {best.first(), best.second()};
}

/// The best moves by the scores of the tablebases.
void Searcher::reportResolved(RootScan& root) const {
    context.player.printThinking({0, root.score, Bound::Exact, 1, root.best});
    sortAsSelected(root.moves);
    for (unsigned i = 1; i < std::min(context.limits.lines, root.moves.count); ++i) {
        PrincipalVariation line;
        line.setTo(root.moves.moves[i].move());
        context.player.printThinking({0, root.moves.moves[i].score(), Bound::Exact, i + 1, line});
    }
}

/// The next best lines, each without the first moves of those before it.
template <Colour Us>
void Searcher::searchOtherLines(int depth, const RankedLine& best, unsigned legalMoves) {
    const unsigned wanted = std::min(context.limits.lines, legalMoves);
    if (wanted <= 1) return;
    placeLine(0, best);
    for (linesFound = 1; linesFound < wanted && !stopped(); ++linesFound) {
        RankedLine other = rankedLines[linesFound];
        if (other.line.empty()) other.score = rankedLines[linesFound - 1].score;
        other.score = searchIteration<Us>(other.score, depth, other.line);
        if (!other.line.empty()) placeLine(linesFound, other);
    }
    linesFound = 0;
}

/// Gives a line its rank. What an earlier iteration knew of its first move is forgotten, and the
/// other moves keep their order: so none of the lines that follow begins with a move that has been
/// found already.
void Searcher::placeLine(unsigned rank, const RankedLine& found) {
    const auto place = rankedLines.begin() + rank;
    const Move first = found.line.first();
    auto old = std::find_if(place, rankedLines.end(), [first](const RankedLine& known) {
        return known.line.first() == first;
    });
    if (old == rankedLines.end()) --old;
    std::move_backward(place, old, old + 1);
    *place = found;
}

/// Searches the root with a narrow window around the previous score, and with wider ones until the
/// score lies inside. The widest reaches to the mates that this depth can prove, and further when
/// the search happens on a nearer one.
template <Colour Us>
int Searcher::searchIteration(int previous, int depth, PrincipalVariation& line) {
    int low = std::max(previous - AspirationWindow, worstPossible - 1);
    int high = std::min(previous + AspirationWindow, bestPossible + 1);
    for (;;) {
        const int score = searchRoot<Us>({low, high, 0, depth}, line);
        if (stopped() || (score > low && score < high)) return score;
        if (score >= high) {
            high = std::max(bestPossible, score) + 1;
        } else {
            low = std::min(worstPossible, score) - 1;
        }
    }
}

/// Thread 0's rules for ending the search after an iteration; the first that applies.
std::optional<StopReport> Searcher::reasonToStop(int depth,
                                                 unsigned legalMoves,
                                                 int score,
                                                 Move best) const {
    const TimeControl& control = context.timeControl;
    if (depth == 1 && legalMoves == 1 && control.timed) {
        return StopReport{StopReason::ForcedMove, best};  // analysis wants to know what follows
    }
    if (depth >= EarlyStopDepth && control.timed) {
        const std::int32_t allotted = control.timeForMove;
        const std::int32_t used = control.searchTime();
        if (easyIterations >= 2 && used >= allotted / EasyMoveShare) {
            return StopReport{StopReason::EasyMove, best};
        }
        if (std::int64_t{allotted} - used < std::int64_t{firstMovesTime} * 3 / 2) {
            return StopReport{StopReason::NoTimeForMore, best};
        }
    }
    if (score >= bestPossible) {
        if (score == DrawScore) return StopReport{StopReason::ForcedDraw, best};
        return StopReport{StopReason::ForcedMate, best, MateScore - score};
    }
    if (score <= worstPossible && score < 0) {
        return StopReport{StopReason::GettingMated, best, score + MateScore};
    }
    if (control.depthLimited && control.maxDepth == static_cast<std::uint32_t>(depth)) {
        return StopReport{StopReason::DepthLimit, best};
    }
    return std::nullopt;
}

}  // namespace vatro
