// tools/perft.cpp - the recursive counter and the texts of "perft" and "divide".
#include "tools/perft.h"

#include <cassert>

#include "base/console.h"
#include "base/text.h"
#include "board/make_move.h"
#include "board/move_generation.h"
#include "board/side.h"

namespace vatro {
namespace {

/// Less depth is counted within a millisecond or so, in a position with very many moves within 20,
/// and need not look whether to stop.
constexpr unsigned MinStopDepth = 3;

template <Colour Us>
std::uint64_t countLeaves(Board_0x88& board,
                          unsigned depth,
                          PerftHashTable& table,
                          std::uint64_t& nodes,
                          StopCheck& stop) {
    constexpr Colour Them = Side<Us>::Them;
    ++nodes;
    if (depth == 1) {
        return countLegalMoves<Us>(board, computePins<Us>(board, findCheckers<Us>(board)));
    }
    const Key key = board.perftKeys[board.perftPly];
    if (const PerftEntry* entry = table.probe(key, depth)) return entry->leafCount;
    if (depth >= MinStopDepth && stop.mustStop()) return 0;
    MoveList list;
    generateLegalMoves<Us>(board, computePins<Us>(board, findCheckers<Us>(board)), list);
    std::uint64_t leaves = 0;
    for (const ScoredMove& entry : list) {
        UndoRecord undo;
        makeMovePerft<Us>(board, entry.move(), undo);
        leaves += countLeaves<Them>(board, depth - 1, table, nodes, stop);
        unmakeMovePerft<Us>(board, entry.move(), undo);
    }
    if (depth >= MinStopDepth && stop.hasStopped()) return leaves;  // perhaps not all
    table.store(key, leaves, depth);
    return leaves;
}

}  // namespace

void preparePerftKeys(Board_0x88& board) {
    board.record().key = board.fullKey();
    board.record().pawnKey = board.pawnKeyOf();
    board.perftKeys[board.perftPly] = board.record().key;
}

std::uint64_t perftCount(Board_0x88& board,
                         unsigned depth,
                         PerftHashTable& table,
                         std::uint64_t& nodes,
                         StopCheck& stop) {
    assert(depth >= 1 && depth <= MaxPerftDepth);
    return board.sideToMove == White ? countLeaves<White>(board, depth, table, nodes, stop)
                                     : countLeaves<Black>(board, depth, table, nodes, stop);
}

std::uint64_t divideRoot(Board_0x88& board,
                         unsigned depth,
                         PerftHashTable& table,
                         std::uint64_t& nodes,
                         StopCheck& stop) {
    assert(depth >= 1 && depth <= MaxPerftDepth);
    ++nodes;
    MoveList list;
    generateLegalMoves(board, list);
    std::uint64_t total = 0;
    for (const ScoredMove& entry : list) {
        UndoRecord undo;
        makeMovePerft(board, entry.move(), undo);
        const std::uint64_t leaves =
            depth == 1 ? 1 : perftCount(board, depth - 1, table, nodes, stop);
        unmakeMovePerft(board, entry.move(), undo);
        if (stop.hasStopped()) break;
        write(moveToText(entry.move()) + ' ' + std::to_string(leaves) + '\n');
        total += leaves;
    }
    say("");
    return total;
}

std::uint64_t perSecond(std::uint64_t events, std::uint64_t centiseconds) {
    return centiseconds ? events * 100 / centiseconds : 0;
}

std::string perftTotalsText(const PerftTotals& totals, const char* prefix) {
    const auto number = [](std::uint64_t value) { return static_cast<unsigned long long>(value); };
    return formatted("%sTotal leaves: %llu\n", prefix, number(totals.leaves)) +
           formatted("%sTotal nodes:  %llu\n", prefix, number(totals.nodes)) +
           formatted("%sTime elapsed: %llu.%02llu s\n", prefix, number(totals.elapsedCs / 100),
                     number(totals.elapsedCs % 100)) +
           formatted("%sNodes/second: %llu\n", prefix,
                     number(perSecond(totals.nodes, totals.elapsedCs))) +
           formatted("# perftHashFull%%:  %g\n", totals.hashFullPercentage);
}

}  // namespace vatro
