// bench/search_bench.cpp - the transposition table, and whole searches with their node counts.
#include <cstdint>

#include <benchmark/benchmark.h>

#include "search/fixed_search.h"

namespace vatro {
namespace {

/// A table whose memory is there, and its random keys.
class WarmTable {
  public:
    explicit WarmTable(unsigned megabytes) : hasMemory(table.resize(megabytes)) {
        if (hasMemory) table.clear();
    }
    /// Depends on what was found for the last one: the next probe waits for it, as a search does.
    Key nextKey(Key found = 0) { return state = (state ^ found) * 0x5851F42D4C957F2DULL + 1; }

    TranspositionTable table;
    const bool hasMemory;

  private:
    Key state = 1;
};

// The low bits of such a generator repeat soon, and they find the bucket.
Key spread(Key key) { return key ^ (key >> 32); }

void tableProbe(benchmark::State& state) {
    WarmTable warm(static_cast<unsigned>(state.range(0)));
    if (!warm.hasMemory) return state.SkipWithError("no memory");
    Key found = 0;
    for (auto _ : state) {
        const auto known = warm.table.probe(spread(warm.nextKey(found)));
        found = known ? known->depth : 0;
    }
    benchmark::DoNotOptimize(found);
}
BENCHMARK(tableProbe)->Arg(64)->Arg(256)->Arg(2048);

void tableStore(benchmark::State& state) {
    WarmTable warm(static_cast<unsigned>(state.range(0)));
    if (!warm.hasMemory) return state.SkipWithError("no memory");
    for (auto _ : state) {
        warm.table.store(spread(warm.nextKey()), {1, 0, Bound::Exact, 5, 0});
    }
}
BENCHMARK(tableStore)->Arg(64)->Arg(256)->Arg(2048);

/// Bytes a second, of memory that the system has handed out.
void tableClear(benchmark::State& state) {
    WarmTable warm(static_cast<unsigned>(state.range(0)));
    if (!warm.hasMemory) return state.SkipWithError("no memory");
    for (auto _ : state) {
        warm.table.clear();
    }
    state.SetBytesProcessed(state.iterations() *
                            static_cast<std::int64_t>(warm.table.sizeInBytes()));
}
BENCHMARK(tableClear)->Arg(64)->Arg(2048)->Unit(benchmark::kMillisecond)->UseRealTime();

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
