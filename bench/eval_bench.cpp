// bench/eval_bench.cpp - the evaluation of middle games: in full, with the lazy cut, cold and warm.
//
// The positions follow each other as in a search, related but not the same; one position over and
// over would teach the branch predictor its evaluation.
#include <cstdint>
#include <memory>
#include <vector>

#include <benchmark/benchmark.h>

#include "board/board.h"
#include "board/make_move.h"
#include "board/move_generation.h"
#include "eval/evaluate.h"
#include "eval/scores.h"

namespace vatro {
namespace {

constexpr const char* middleGames[] = {
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
    "r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - - 0 10",
    "r1bq1rk1/pp2ppbp/2np1np1/8/3NP3/2N1BP2/PPPQ2PP/R3KB1R b KQ - 0 9",
    "2rq1rk1/pb1n1ppN/4p3/1pb5/3P1Pn1/P1N5/1PQ1B1PP/R1B2RK1 b - - 0 16",
    "r2q1rk1/1b2bppp/p2ppn2/1p6/3QP3/1BN1B3/PPP2PPP/R4RK1 w - - 0 13",
    "2r2rk1/1bqnbppp/pp1ppn2/8/2PNP3/1PN1BP2/P2QB1PP/2R2R1K b - - 0 14",
    "3r1rk1/pp3ppp/2p1bn2/4q3/4P3/2N2B2/PPQ2PPP/3RR1K1 w - - 0 19",
    "r1b2rk1/2q1bppp/p2p1n2/np2p3/3PP3/5N1P/PPBN1PP1/R1BQR1K1 w - - 0 12",
};
constexpr unsigned SuccessorsEach = 8;

std::vector<std::unique_ptr<Board_0x88>> setUpPositions() {
    std::vector<std::unique_ptr<Board_0x88>> boards;
    for (const char* fen : middleGames) {
        const auto board = std::make_unique<Board_0x88>();
        if (!board->setupFromFEN(fen)) continue;
        MoveList moves;
        generateLegalMoves(*board, moves);
        for (unsigned i = 0; i < SuccessorsEach; ++i) {
            boards.push_back(std::make_unique<Board_0x88>(*board));
            UndoRecord undo;
            makeMove(*boards.back(), moves.moves[i * moves.count / SuccessorsEach].move(), undo);
            boards.back()->halfmoveClock = 0;  // the lazy cut needs the full scale
        }
    }
    return boards;
}

/// Evaluates every position in turn. `prepare` is called with the table and each board before.
template <typename Prepare>
void evaluateAll(benchmark::State& state, int alpha, int beta, Prepare prepare) {
    const auto boards = setUpPositions();
    PawnHashTable pawnHash;
    if (!pawnHash.resize(1)) return state.SkipWithError("no memory");
    Counter hits;
    EvalMemory memory{pawnHash, hits};
    while (state.KeepRunningBatch(static_cast<std::int64_t>(boards.size()))) {
        for (const auto& board : boards) {
            prepare(pawnHash, *board);
            int score = evaluate(*board, memory, alpha, beta);
            benchmark::DoNotOptimize(score);
        }
    }
    state.SetItemsProcessed(state.iterations());
}

void leaveAlone(PawnHashTable&, const Board_0x88&) {}

void fullEvaluation(benchmark::State& state) {
    evaluateAll(state, -MateScore, MateScore, leaveAlone);
}
BENCHMARK(fullEvaluation);

void lazyCut(benchmark::State& state) {
    evaluateAll(state, MateThreshold, MateThreshold + 1, leaveAlone);
}
BENCHMARK(lazyCut);

/// The pawn structure is computed and stored every time.
void coldPawnHash(benchmark::State& state) {
    constexpr Key OtherKey = Key{1} << 63;  // the same entry, another position
    evaluateAll(state, -MateScore, MateScore, [](PawnHashTable& pawnHash, const Board_0x88& board) {
        pawnHash.store(board.record().pawnKey ^ OtherKey, {});
    });
}
BENCHMARK(coldPawnHash);

/// The two steps that every evaluation begins with.
void materialAndScale(benchmark::State& state) {
    const auto boards = setUpPositions();
    MaterialTable materials;
    while (state.KeepRunningBatch(static_cast<std::int64_t>(boards.size()))) {
        for (const auto& board : boards) {
            const MaterialInfo& material = materials.find(*board);
            int scale = scaleFactor(*board, material);
            benchmark::DoNotOptimize(scale);
        }
    }
}
BENCHMARK(materialAndScale);

}  // namespace
}  // namespace vatro

BENCHMARK_MAIN();
