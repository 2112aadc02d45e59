// tools/self_test.cpp - the table of the self-test and its report.
#include "tools/self_test.h"

#include <chrono>
#include <cstdint>

#include "base/console.h"
#include "base/text.h"
#include "tools/perft.h"

namespace vatro {
namespace {

struct Row {
    unsigned number;
    unsigned depth;
    const char* fen;
    std::uint64_t leaves;
};

constexpr char middleGame[] =
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1";
constexpr char rookEnding[] = "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1";

// Published counts. The numbers 7 and 13 are not in use.
constexpr Row rows[] = {
    {1, 1, startPositionFEN, 20},
    {2, 2, startPositionFEN, 400},
    {3, 3, startPositionFEN, 8902},
    {4, 4, startPositionFEN, 197281},
    {5, 5, startPositionFEN, 4865609},
    {6, 6, startPositionFEN, 119060324},
    {8, 1, middleGame, 48},
    {9, 2, middleGame, 2039},
    {10, 3, middleGame, 97862},
    {11, 4, middleGame, 4085603},
    {12, 5, middleGame, 193690690},
    {14, 1, "8/3K4/2p5/p2b2r1/5k2/8/8/1q6 b - - 1 67", 50},
    {15, 2, "8/3K4/2p5/p2b2r1/5k2/8/8/1q6 b - - 1 67", 279},
    {16, 6, "8/7p/p5pb/4k3/P1pPn3/8/P5PP/1rB2RK1 b - d3 0 28", 38633283},
    {17, 5, "rnbqkb1r/ppppp1pp/7n/4Pp2/8/8/PPPP1PPP/RNBQKBNR w KQkq f6 0 3", 11139762},
    {18, 6, rookEnding, 11030083},
    {19, 7, rookEnding, 178633661},
    {20, 5, middleGame, 193690690},
};

struct Sums {
    unsigned passed = 0;
    unsigned failed = 0;
    std::uint64_t leaves = 0;
    std::uint64_t nodes = 0;
    std::uint64_t elapsedCs = 0;
};

/// Centiseconds since some moment; only differences mean something.
std::uint64_t clockCs() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(now).count() / 10);
}

unsigned long long number(std::uint64_t value) { return value; }

std::string rowText(const Row& row, std::uint64_t leaves, std::uint64_t nodes, std::uint64_t cs) {
    if (leaves != row.leaves) {
        return formatted("# Self-test no. %u FAILED  (expected %llu, got %llu)\n", row.number,
                         number(row.leaves), number(leaves));
    }
    return formatted("# Self-test no. %u passed: n=%llu, t=%llu, lps=%llu, nps=%llu\n", row.number,
                     number(leaves), number(cs), number(perSecond(leaves, cs)),
                     number(perSecond(nodes, cs)));
}

std::string summaryText(const Sums& sums) {
    return formatted("%u tests passed, %u tests failed, 0 tests skipped, total %u tests run:\n",
                     sums.passed, sums.failed, sums.passed + sums.failed) +
           formatted("n=%llu, t=%llu, lps=%llu, nps=%llu\n", number(sums.nodes),
                     number(sums.elapsedCs), number(perSecond(sums.leaves, sums.elapsedCs)),
                     number(perSecond(sums.nodes, sums.elapsedCs)));
}

}  // namespace

bool runSelfTest(Board_0x88& board, PerftHashTable& table, StopCheck& stop) {
    Sums sums;
    for (const Row& row : rows) {
        if (!board.setupFromFEN(row.fen)) {
            say(formatted("# Self-test no. %u FAILED  (illegal FEN)\n", row.number));
            ++sums.failed;
            continue;
        }
        if (!table.prepare()) return false;
        std::uint64_t nodes = 0;
        const std::uint64_t start = clockCs();
        const std::uint64_t leaves = perftCount(board, row.depth, table, nodes, stop);
        if (stop.hasStopped()) break;
        const std::uint64_t elapsedCs = clockCs() - start;
        sums.leaves += leaves;
        sums.nodes += nodes;
        sums.elapsedCs += elapsedCs;
        ++(leaves == row.leaves ? sums.passed : sums.failed);
        say(rowText(row, leaves, nodes, elapsedCs));
    }
    if (stop.hasStopped()) say(InterruptedLine);
    say(summaryText(sums));
    return true;
}

}  // namespace vatro
