// bench/board_bench.cpp - generation, make and unmake, attack tests and counting without a hash.
//
// Each benchmark runs over the same positions, from the opening to a pawn ending.
#include <cstdint>
#include <memory>
#include <vector>

#include <benchmark/benchmark.h>

#include "board/attacks.h"
#include "board/board.h"
#include "board/make_move.h"
#include "board/move_generation.h"
#include "board/move_ordering.h"
#include "board/side.h"

namespace vatro {
namespace {

struct CountedPosition {
    const char* fen;
    unsigned depth;  // so that a count takes some tens of milliseconds
};

constexpr CountedPosition positions[] = {
    {startPositionFEN, 5},
    {"r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1", 4},
    {"8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1", 6},
    {"r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - - 0 10", 4},
    {"r1bq1rk1/pp2ppbp/2np1np1/8/3NP3/2N1BP2/PPPQ2PP/R3KB1R w KQ - 3 9", 4},
    {"8/5k2/1p1p1pp1/pP1P3p/P4P1P/3K2P1/8/8 w - - 0 40", 7},
};

std::vector<std::unique_ptr<Board_0x88>> setUpPositions() {
    std::vector<std::unique_ptr<Board_0x88>> boards;
    for (const CountedPosition& position : positions) {
        boards.push_back(std::make_unique<Board_0x88>());
        if (!boards.back()->setupFromFEN(position.fen)) boards.pop_back();
    }
    return boards;
}

void generation(benchmark::State& state) {
    const auto boards = setUpPositions();
    std::int64_t moves = 0;
    while (state.KeepRunning()) {
        for (const auto& board : boards) {
            MoveList list;
            generateLegalMoves(*board, list);
            moves += list.count;
            benchmark::DoNotOptimize(list);
        }
    }
    state.SetItemsProcessed(moves);
}
BENCHMARK(generation);

void captureGeneration(benchmark::State& state) {
    const auto boards = setUpPositions();
    while (state.KeepRunning()) {
        for (const auto& board : boards) {
            MoveList list;
            const PinInfo pins = computePins(*board);
            const SquareMask everywhere = ~SquareMask{0};
            board->sideToMove == White ? generateCaptures<White>(*board, pins, everywhere, list)
                                       : generateCaptures<Black>(*board, pins, everywhere, list);
            benchmark::DoNotOptimize(list);
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(boards.size()));
}
BENCHMARK(captureGeneration);

/// Every legal move made and unmade; items are such pairs.
template <auto Make, auto Unmake>
void makeAndUnmake(benchmark::State& state) {
    const auto boards = setUpPositions();
    std::vector<MoveList> lists(boards.size());
    for (std::size_t i = 0; i < boards.size(); ++i) {
        generateLegalMoves(*boards[i], lists[i]);
    }
    std::int64_t moves = 0;
    while (state.KeepRunning()) {
        for (std::size_t i = 0; i < boards.size(); ++i) {
            for (const ScoredMove& entry : lists[i]) {
                UndoRecord undo;
                Make(*boards[i], entry.move(), undo);
                benchmark::ClobberMemory();
                Unmake(*boards[i], entry.move(), undo);
            }
            moves += lists[i].count;
        }
    }
    state.SetItemsProcessed(moves);
}

using MakeFunction = void (*)(Board_0x88&, Move, UndoRecord&);
using UnmakeFunction = void (*)(Board_0x88&, Move, const UndoRecord&);
constexpr MakeFunction makeGameMove = makeMove;
constexpr UnmakeFunction unmakeGameMove = unmakeMove;
constexpr MakeFunction makeCountedMove = makeMovePerft;
constexpr UnmakeFunction unmakeCountedMove = unmakeMovePerft;
BENCHMARK_TEMPLATE(makeAndUnmake, makeGameMove, unmakeGameMove)->Name("makeAndUnmake");
BENCHMARK_TEMPLATE(makeAndUnmake, makeCountedMove, unmakeCountedMove)->Name("makeAndUnmakePerft");

/// Every square of every position, by both colours.
void attackTest(benchmark::State& state) {
    const auto boards = setUpPositions();
    while (state.KeepRunning()) {
        int attacked = 0;
        for (const auto& board : boards) {
            for (const Square64 square : allSquares) {
                attacked += isAttacked(*board, as88(square), White);
                attacked += isAttacked(*board, as88(square), Black);
            }
        }
        benchmark::DoNotOptimize(attacked);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(boards.size()) * 128);
}
BENCHMARK(attackTest);

template <Colour Us>
std::uint64_t countWithoutHash(Board_0x88& board, unsigned depth) {
    const PinInfo info = computePins<Us>(board, findCheckers<Us>(board));
    if (depth == 1) return countLegalMoves<Us>(board, info);
    MoveList list;
    generateLegalMoves<Us>(board, info, list);
    std::uint64_t leaves = 0;
    for (const ScoredMove& entry : list) {
        UndoRecord undo;
        makeMovePerft<Us>(board, entry.move(), undo);
        leaves += countWithoutHash<Side<Us>::Them>(board, depth - 1);
        unmakeMovePerft<Us>(board, entry.move(), undo);
    }
    return leaves;
}

/// Items are leaves.
void perftWithoutHash(benchmark::State& state) {
    const auto boards = setUpPositions();
    const auto index = static_cast<std::size_t>(state.range(0));
    Board_0x88& board = *boards[index];
    std::uint64_t leaves = 0;
    while (state.KeepRunning()) {
        const unsigned depth = positions[index].depth;
        leaves += board.sideToMove == White ? countWithoutHash<White>(board, depth)
                                            : countWithoutHash<Black>(board, depth);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(leaves));
}
BENCHMARK(perftWithoutHash)->DenseRange(0, std::size(positions) - 1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vatro

BENCHMARK_MAIN();
