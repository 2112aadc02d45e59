// tools/perft.cpp - the recursive counter and the texts of "perft" and "divide".
#include "tools/perft.h"

#include <cassert>

#include "base/console.h"
#include "board/make_move.h"
#include "board/move_generation.h"
#include "board/side.h"

namespace vatro {
namespace {

template <Colour Us>
std::uint64_t countLeaves(Board_0x88& board,
                          unsigned depth,
                          PerftHashTable& table,
                          std::uint64_t& nodes) {
    constexpr Colour Them = Side<Us>::Them;
    ++nodes;
    if (depth == 1) {
        return countLegalMoves<Us>(board, computePins<Us>(board, findCheckers<Us>(board)));
    }
    const Key key = board.perftKeys[board.perftPly];
    if (const PerftEntry* entry = table.probe(key, depth)) return entry->leafCount;
    MoveList list;
    generateLegalMoves<Us>(board, computePins<Us>(board, findCheckers<Us>(board)), list);
    std::uint64_t leaves = 0;
    for (const ScoredMove& entry : list) {
        UndoRecord undo;
        makeMovePerft<Us>(board, entry.move, undo);
        leaves += countLeaves<Them>(board, depth - 1, table, nodes);
        unmakeMovePerft<Us>(board, entry.move, undo);
    }
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
                         std::uint64_t& nodes) {
    assert(depth >= 1 && depth <= MaxPerftDepth);
    return board.sideToMove == White ? countLeaves<White>(board, depth, table, nodes)
                                     : countLeaves<Black>(board, depth, table, nodes);
}

std::uint64_t divideRoot(Board_0x88& board,
                         unsigned depth,
                         PerftHashTable& table,
                         std::uint64_t& nodes) {
    assert(depth >= 1 && depth <= MaxPerftDepth);
    ++nodes;
    MoveList list;
    generateLegalMoves(board, list);
    std::uint64_t total = 0;
    for (const ScoredMove& entry : list) {
        UndoRecord undo;
        makeMovePerft(board, entry.move, undo);
        const std::uint64_t leaves = depth == 1 ? 1 : perftCount(board, depth - 1, table, nodes);
        unmakeMovePerft(board, entry.move, undo);
        write(moveToText(entry.move) + ' ' + std::to_string(leaves) + '\n');
        total += leaves;
    }
    say("");
    return total;
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
