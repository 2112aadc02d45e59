// bench/search_bench.cpp - the transposition table, and whole searches with their node counts.
#include <memory>
#include <random>

#include <benchmark/benchmark.h>

#include "search/fixed_search.h"

namespace vatro {
namespace {

constexpr unsigned LargeTableMB = 256;  // far larger than the caches

std::vector<Key> randomKeys() {
    std::mt19937_64 generator(1);
    std::vector<Key> keys(1 << 16);
    for (Key& key : keys) {
        key = generator();
    }
    return keys;
}

void tableProbe(benchmark::State& state) {
    TranspositionTable table;
    if (!table.resize(LargeTableMB)) return state.SkipWithError("no memory");
    const std::vector<Key> keys = randomKeys();
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(table.probe(keys[i++ % keys.size()]));
    }
}
BENCHMARK(tableProbe);

void tableStore(benchmark::State& state) {
    TranspositionTable table;
    if (!table.resize(LargeTableMB)) return state.SkipWithError("no memory");
    const std::vector<Key> keys = randomKeys();
    std::size_t i = 0;
    for (auto _ : state) {
        table.store(keys[i++ % keys.size()], {1, 0, Bound::Exact, 5, 0});
    }
}
BENCHMARK(tableStore);

/// Nodes per second; "nodes" is the signature, which a change of speed alone leaves as it is.
void wholeSearch(benchmark::State& state) {
    std::uint64_t nodes = 0;
    for (auto _ : state) {
        nodes = fixedSearchNodes(static_cast<unsigned>(state.range(0)));
    }
    state.counters["nodes"] = static_cast<double>(nodes);
    state.counters["nodes/s"] = benchmark::Counter(static_cast<double>(nodes),
                                                   benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(wholeSearch)->Arg(8)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vatro

BENCHMARK_MAIN();
