// tests/search/table_warmer_test.cpp - touching the tables' memory beside a search, and giving way.
#include "search/table_warmer.h"

#include <chrono>
#include <thread>

#include <gtest/gtest.h>

namespace vatro {
namespace {

struct Warmer : testing::Test {
    void SetUp() override { ASSERT_TRUE(table.resize(64) && pawnHash.resize(1)); }
    void waitUntilComplete() {
        warmer.waitUntilComplete();
        EXPECT_TRUE(warmer.isComplete());
    }

    TranspositionTable table;
    PawnHashTable pawnHash;
    TableWarmer warmer{table, pawnHash};
};

TEST_F(Warmer, LeavesWhatASearchStoresMeanwhile) {
    const TTData data{NoMove, 12, Bound::Exact, 5, 1};
    warmer.start();
    for (Key key = 1; key <= 20000; ++key) {
        table.store(key * 0x9E3779B97F4A7C15, data);
    }
    waitUntilComplete();
    for (Key key = 1; key <= 20000; ++key) {
        ASSERT_TRUE(table.probe(key * 0x9E3779B97F4A7C15)) << key;
    }
}

TEST_F(Warmer, APauseHoldsUntilItIsEnded) {
    warmer.pause();
    warmer.start();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_FALSE(warmer.isComplete());
    warmer.resume();
    waitUntilComplete();
}

TEST_F(Warmer, StopsAtOnceWhenATableIsRemade) {
    for (int i = 0; i < 50; ++i) {
        if (i % 3 == 0) warmer.pause();
        warmer.start();
        std::this_thread::sleep_for(std::chrono::microseconds(i * 20));
        warmer.cancel();
        ASSERT_TRUE(table.resize(i % 2 ? 64 : 32));  // a late touch would crash
        warmer.resume();
    }
    warmer.start();
    waitUntilComplete();
}

TEST_F(Warmer, ClearingReachesTheLastEntry) {
    const TTData data{NoMove, 12, Bound::Exact, 5, 1};
    const Key count = table.sizeInBytes() / sizeof(TTBuckets::Bucket);
    for (Key key = 0; key < count; ++key) {
        table.store(key, data);
    }
    table.clear();
    for (Key key = 0; key < count; ++key) {
        ASSERT_FALSE(table.probe(key)) << key;
    }
}

}  // namespace
}  // namespace vatro
