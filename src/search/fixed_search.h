// search/fixed_search.h - a search that depends on nothing but its position and depth.
//
// One thread, no clock, and what it reports is kept, not printed: tests hold it against expected
// results and counts, `vatro bench` and the benchmarks time it.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "board/game.h"
#include "search/searcher.h"

namespace vatro {

/// Sixteen positions from opening to pawn ending, for signatures and for speed.
inline constexpr const char* fixedPositions[] = {
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1",
    "r1bqkbnr/pppp1ppp/2n5/1B2p3/4P3/5N2/PPPP1PPP/RNBQK2R b KQkq - 3 3",
    "rnbqk2r/ppp1ppbp/3p1np1/8/2PPP3/2N2N2/PP3PPP/R1BQKB1R b KQkq - 1 5",
    "r2q1rk1/pp1bbppp/2n1pn2/2pp4/3P1B2/2PBPN2/PP1N1PPP/R2Q1RK1 w - - 4 9",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
    "2rq1rk1/pb1nbppp/1p2pn2/2pp4/2PP4/1PN1PN2/PBQ1BPPP/2RR2K1 w - - 2 12",
    "r1b2rk1/2q1bppp/p2ppn2/1p6/3QPP2/2N1B3/PPP1B1PP/R4RK1 w - - 0 13",
    "3r1rk1/p1q2pp1/1p2pn1p/2p5/P1PP4/1QB1PP2/5P1P/R3R1K1 b - - 1 22",
    "4rrk1/1bp3pp/p2p4/1p1P1q2/2P1nP2/1P2B1P1/P3Q2P/R4RK1 b - - 3 24",
    "2r2rk1/1p3ppp/p2p1n2/3Pp3/1P2P3/P1N2P2/6PP/2R2RK1 w - - 1 21",
    "8/5pk1/1p1r2p1/p1p1P2p/P1P2P1P/1P1R2P1/6K1/8 w - - 0 40",
    "8/1b3pk1/p3p1p1/1p1nP2p/3N3P/1P3PP1/P1B3K1/8 b - - 6 35",
    "8/8/1p1k1p2/p1p2Pp1/P1P1K1P1/1P6/8/8 w - - 0 50",
    "6k1/5ppp/8/1q6/3Q4/8/5PPP/6K1 w - - 0 40",
    "8/8/8/8/5kp1/P7/8/1K1N4 w - - 0 80",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1",
};

/// What the search reported while it ran.
struct SearchRecord final : SearchInterface, SearchReporter {
    struct Line {
        unsigned depth;
        int score;
        std::vector<Move> moves;
        unsigned rank;
    };
    std::vector<Line> lines;
    std::vector<Line> allLines;  // those, too, whose score is only a bound
    std::vector<Move> refusedMoves;
    std::optional<StopReport> stop;

    void clear() {
        lines.clear();
        allLines.clear();
        refusedMoves.clear();
        stop.reset();
        looksAtClock = 0;
    }

    unsigned looksAtClock = 0;

    bool timeout() override {
        ++looksAtClock;
        return false;
    }
    void printThinking(const RootLine& best) override {
        const PrincipalVariation& line = best.line;
        allLines.push_back(
            {best.depth, best.score, {line.moves, line.moves + line.length}, best.rank});
        if (best.bound == Bound::Exact) lines.push_back(allLines.back());
    }
    void printStatistics() override {}
    void reportStop(const StopReport& report) override { stop = report; }
    void reportRefusedMove(Move move) override { refusedMoves.push_back(move); }
};

class FixedSearch {
  public:
    explicit FixedSearch(unsigned ttSizeMB = 16, unsigned pawnHashSizeMB = 1)
        : tablesReady(table.resize(ttSizeMB) && pawnHash.resize(pawnHashSizeMB)) {
        control.timeForMove = INT32_MAX;
        control.depthLimited = true;
    }

    /// Searches to `depth`, or until a mate is certain.
    SearchResult run(const Board_0x88& board, unsigned depth) {
        control.maxDepth = depth;
        control.startSearch();
        record.clear();
        searcher->prepare(board);
        return searcher->iterativeDeepening();
    }

    TimeControl control;
    TranspositionTable table;
    PawnHashTable pawnHash;
    std::atomic<bool> tablesAreWarm{true};
    SearchLimits limits;
    TablebaseState tablebases;
    SearchRecord record;
    const bool tablesReady;
    std::unique_ptr<Searcher> searcher = std::make_unique<Searcher>(
        0,
        SearchContext{table, pawnHash, tablesAreWarm, tablebases, control, limits, record, record});
};

/// Nodes of all fixed positions, each searched to `depth` with empty tables.
inline std::uint64_t fixedSearchNodes(unsigned depth) {
    std::uint64_t nodes = 0;
    const auto game = std::make_unique<Game>();
    for (const char* fen : fixedPositions) {
        FixedSearch search;
        if (!search.tablesReady || !game->setup(fen)) return 0;
        search.run(game->board, depth);
        nodes += search.searcher->nodes;
    }
    return nodes;
}

}  // namespace vatro
