// src/search/searcher.h - one thread's search.
//
// The routines of a node are templates on the side to move and call each other across the colours.
// The lines that they pass on carry moves both ways; see PrincipalVariation.
#pragma once

#include <atomic>
#include <cstdint>

#include "board/board.h"
#include "board/game.h"
#include "egtb/tablebases.h"
#include "eval/evaluate.h"
#include "search/interfaces.h"
#include "search/principal_variation.h"
#include "search/time_control.h"
#include "search/transposition_table.h"

namespace vatro {

class MovePicker;

/// Counters of one search, zero at its start.
struct SearchStatistics {
    std::uint64_t qsNodes = 0;
    std::uint64_t qsChecks = 0;
    std::uint64_t cutoffs = 0;
    std::uint64_t cutoffsFirst = 0;
    std::uint64_t qsCutoffs = 0;
    std::uint64_t qsCutoffsFirst = 0;
    std::uint64_t ttHits = 0;
    std::uint64_t tbHits = 0;
    std::uint64_t pawnHashHits = 0;
};

/// What a finished search found; NoMove for none.
struct SearchResult {
    Move best = NoMove;
    Move reply = NoMove;
};

/// What the searchers of a player share. The player owns all of it and outlives them.
struct SearchContext {
    TranspositionTable& transpositionTable;
    PawnHashTable& pawnHash;
    const TablebaseState& tablebases;
    const TimeControl& timeControl;
    SearchInterface& player;
};

/// The thread that runs the search owns every field; others set the two flags and read `nodes`.
class alignas(64) Searcher {
  public:
    static constexpr unsigned MaxDepth = 100;  // of an iteration

    Searcher(unsigned index, const SearchContext& shared) : threadIndex(index), context(shared) {}

    /// Searches the game's position, deeper and deeper, until a stop rule or `stopFlag` ends it.
    /// Returns no move in a search without time limit and in one whose result is discarded.
    SearchResult iterativeDeepening(const Board_0x88& gameBoard);

    /// One iteration at the root. `line` holds the moves to try first and receives the best line.
    template <Colour Us>
    int searchRoot(int alpha, int beta, int depth, PrincipalVariation& line);

    /// A node with `depth` >= 1. The score is from the view of `Us`, the side to move; AbortScore
    /// once the search is stopped.
    template <Colour Us>
    int alphaBeta(int alpha, int beta, int height, int depth, PrincipalVariation& line);
    /// A node in check.
    template <Colour Us>
    int searchEvasions(
        SquareMask checkers, int alpha, int beta, int height, int depth, PrincipalVariation& line);
    /// A node beyond the horizon: captures and promotions only, unless in check.
    template <Colour Us>
    int quiescence(int alpha, int beta, int height, PrincipalVariation& line);

    /// Prepares the searcher for a search, before its thread is told to start. By whoever starts.
    void clearFlags() {
        stopFlag = false;
        discardFlag = false;
    }

    std::atomic<std::uint64_t> nodes{0};   // one writer: relaxed load and store
    std::atomic<bool> stopFlag{false};     // ends the search; cleared by whoever starts it
    std::atomic<bool> discardFlag{false};  // the result is not to be played; the same
    SearchStatistics statistics;
    Board_0x88 board;

  private:
    struct NodeBounds;
    struct RootScan;

    bool stopped() const { return stopFlag.load(std::memory_order_relaxed); }
    bool enterNode();
    template <Colour Us>
    NodeBounds boundsAt(int alpha, int beta, int height) const;
    /// What alphaBeta and searchEvasions do first. True when that decides the node, with its score;
    /// else the node's window and the table's move are set.
    template <Colour Us>
    bool isDecided(int alpha,
                   int beta,
                   int height,
                   int depth,
                   PrincipalVariation& line,
                   NodeBounds& bounds,
                   Move& tableMove,
                   int& score);
    int evaluateHere(int alpha, int beta);
    void store(const NodeBounds& bounds, int height, int depth, int score, Move move);
    template <Colour Us>
    bool probeTablebases(bool mayReadDisk, int& score);
    /// The score of the side that made the last move: dispatches a child of `Us`.
    template <Colour Us>
    int searchChild(int a, int b, int height, int depth, int number, PrincipalVariation& line);
    /// searchChild with the reduction of late quiet moves. `reduces` is judged before the move.
    template <Colour Us>
    int searchReduced(
        int a, int b, int height, int depth, int number, bool reduces, PrincipalVariation& line);
    template <Colour Us, bool Reduces>
    int searchMoves(MovePicker& picker,
                    const NodeBounds& bounds,
                    int height,
                    int depth,
                    PrincipalVariation& line);

    template <Colour Us>
    RootScan scanRoot();
    template <Colour Us>
    SearchResult iterate();
    template <Colour Us>
    int searchWindow(int previous, int depth, PrincipalVariation& line);
    bool shouldStop(int depth, unsigned legalMoves, int score, const PrincipalVariation& best);

    const unsigned threadIndex;  // 0: the main search thread
    SearchContext context;
    EvalMemory evalMemory{context.pawnHash, statistics.pawnHashHits};
    unsigned iterationDepth = 0;
    std::int32_t firstMovesTime = 0;  // centiseconds used by the first two root moves
    bool easyFlag = false;            // the best root move stands out
    bool easyAtDepth[MaxDepth + 1] = {};
    int bestPossible = 0;
    int worstPossible = 0;
};

}  // namespace vatro
