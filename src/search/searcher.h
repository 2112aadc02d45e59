// search/searcher.h - one thread's search.
//
// The routines of a node are templates on the side to move and call each other across the colours.
// The lines that they pass on carry moves both ways; see PrincipalVariation.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <vector>

#include "board/board.h"
#include "egtb/tablebases.h"
#include "eval/evaluate.h"
#include "search/interfaces.h"
#include "search/node_window.h"
#include "search/principal_variation.h"
#include "search/search_limits.h"
#include "search/search_reporter.h"
#include "search/search_statistics.h"
#include "search/time_control.h"
#include "search/transposition_table.h"

namespace vatro {

class MovePicker;

/// What a finished search found; NoMove for none.
struct SearchResult {
    Move best = NoMove;
    Move reply = NoMove;
};

/// What the searchers of a player share. They own none of it, and all of it outlives them.
struct SearchContext {
    TranspositionTable& transpositionTable;
    PawnHashTable& pawnHash;
    const std::atomic<bool>& tablesAreWarm;  // the system has handed out all their memory
    const TablebaseState& tablebases;
    const TimeControl& timeControl;
    const SearchLimits& limits;
    SearchInterface& player;
    SearchReporter& reporter;
};

/// The thread that runs the search owns every field; others set the two flags and read the
/// counters.
class alignas(64) Searcher {
  public:
    static constexpr unsigned MaxDepth = 100;  // of an iteration

    Searcher(unsigned index, const SearchContext& shared) : threadIndex(index), context(shared) {}

    /// Prepares a search of the game's position, before the thread is told to start: it may wake
    /// late, when the game has gone on. By whoever starts it.
    void prepare(const Board_0x88& gameBoard);
    /// Searches the position that was prepared, deeper and deeper, until a stop rule or `stopFlag`
    /// ends it. Returns no move when the result is discarded.
    SearchResult iterativeDeepening();
    /// Plies from the root to the end of the longest line that this search has looked at. Its own
    /// thread only.
    unsigned selectiveDepth() const;

    std::atomic<std::uint64_t> nodes{0};   // one writer: relaxed load and store
    std::atomic<std::uint64_t> tbHits{0};  // the same
    std::atomic<bool> stopFlag{false};     // ends the search; cleared by whoever starts it
    std::atomic<bool> discardFlag{false};  // the result is not to be played; the same
    SearchStatistics statistics;
    Board_0x88 board;

  private:
    struct Node;
    struct RootScan;
    class RootPicker;
    /// One of several best lines.
    struct RankedLine {
        PrincipalVariation line;
        int score = 0;
    };

    // Scores are from the view of `Us`, the side to move; AbortScore once the search is stopped.

    /// A node with a depth of 1 or more.
    template <Colour Us>
    int alphaBeta(const NodeWindow& window, PrincipalVariation& line);
    /// A node in check.
    template <Colour Us>
    int searchEvasions(SquareMask checkers, const NodeWindow& window, PrincipalVariation& line);
    /// A node beyond the horizon: captures and promotions only, unless in check. The window's depth
    /// does not count.
    template <Colour Us>
    int quiescence(const NodeWindow& window, PrincipalVariation& line);

    /// What alphaBeta and searchEvasions do first. The node's score where that decides it; else
    /// `node` is set.
    template <Colour Us>
    std::optional<int> openNode(const NodeWindow& window, PrincipalVariation& line, Node& node);
    bool enterNode();
    bool lookAtClock();
    std::uint64_t countNode();
    bool stopped() const { return stopFlag.load(std::memory_order_relaxed); }
    template <Colour Us>
    Node narrowed(NodeWindow window) const;
    int evaluateHere(const NodeWindow& window);
    /// Stores a score of the node and the move that leads to it.
    void store(const Node& node, int score, Move move);
    bool mayReadTablebases(int depth) const;
    /// The score of the position on the board as a table holds it, if the tablebases know it.
    template <Colour Us>
    std::optional<int> probeTablebases(bool mayReadDisk);

    template <Colour Us, typename Picker, typename AfterMove>
    int searchMoves(Picker& picker,
                    const Node& node,
                    PrincipalVariation& line,
                    AfterMove afterMove);
    void prefetchAfter(Move move) const;
    template <Colour Us, typename Search>
    int scoreAfter(Move move, Search search);
    template <Colour Us>
    int searchChild(const NodeWindow& child, bool isFirst, PrincipalVariation& line);

    template <Colour Us>
    RootScan scanRoot();
    std::uint64_t timeCheckInterval() const;
    template <Colour Us>
    SearchResult iterate();
    template <Colour Us>
    int searchIteration(int previous, int depth, PrincipalVariation& line);
    template <Colour Us>
    void searchOtherLines(int depth, const RankedLine& best, unsigned legalMoves);
    void placeLine(unsigned rank, const RankedLine& found);
    bool isAllowedAtRoot(Move move) const;
    void reportResolved(RootScan& root) const;
    /// The root, with a window's height of 0. `line` holds the moves to try first and receives the
    /// best line. The best score so far when the search is stopped.
    template <Colour Us>
    int searchRoot(const NodeWindow& window, PrincipalVariation& line);
    std::optional<StopReport> reasonToStop(int depth,
                                           unsigned legalMoves,
                                           int score,
                                           Move best) const;

    const unsigned threadIndex;  // 0: the main search thread
    SearchContext context;
    EvalMemory evalMemory{context.pawnHash, statistics.pawnHashHits};
    std::uint64_t timeCheckMask = 0;  // nodes between two looks at the clock, less one
    int iterationDepth = 0;
    std::vector<RankedLine> rankedLines;  // where the limits want more than one
    unsigned linesFound = 0;              // in this iteration, while another is searched for
    std::int32_t firstMovesTime = 0;      // centiseconds used by the first two root moves
    bool bestStandsOut = false;           // in the latest search of the root
    int easyIterations = 0;               // the latest ones in which the best move stood out
    int bestPossible = 0;                 // scores at the end of this iteration
    int worstPossible = 0;
};

}  // namespace vatro
