// tests/search/transposition_table_test.cpp - what is stored comes back, and only that.
#include "search/transposition_table.h"

#include <atomic>
#include <thread>

#include <gtest/gtest.h>

#include "eval/scores.h"

namespace vatro {
namespace {

constexpr ScoreLimits openLimits = {-MateScore, MateScore - 1};
constexpr NodeWindow wideWindow(int height, int depth) {
    return {-MateScore, MateScore, height, depth};
}

struct TranspositionTableTest : testing::Test {
    void SetUp() override { ASSERT_TRUE(table.resize(1)); }
    void store(Key key, int depth, unsigned rootPly = 0) {
        table.store(key, rootPly, openLimits, wideWindow(0, depth), 10, 1);
    }
    bool has(Key key) { return table.probe(key, wideWindow(0, 0)).hit; }

    TranspositionTable table;
};

TEST_F(TranspositionTableTest, MateScoresCountFromThePosition) {
    for (const int sign : {1, -1}) {
        table.store(7, 3, openLimits, wideWindow(3, 4), sign * 31990, 1);
        EXPECT_EQ(table.probe(7, wideWindow(5, 4)).score, sign * 31988);
    }
}

TEST_F(TranspositionTableTest, BoundsCutOnlyOnTheirSide) {
    table.store(1, 0, openLimits, {20, 50, 0, 4}, 50, 9);
    EXPECT_TRUE(table.probe(1, {49, 50, 0, 4}).cutoff);
    EXPECT_FALSE(table.probe(1, {50, 51, 0, 4}).cutoff);
    table.store(2, 0, openLimits, {50, 80, 0, 4}, 50, 9);
    EXPECT_TRUE(table.probe(2, {50, 51, 0, 4}).cutoff);
    EXPECT_FALSE(table.probe(2, {49, 50, 0, 4}).cutoff);
    const TTProbe deeper = table.probe(1, {49, 50, 0, 5});
    EXPECT_TRUE(deeper.hit && !deeper.cutoff);
    EXPECT_EQ(deeper.move, 9);
}

TEST_F(TranspositionTableTest, ScoresAtTheLimitsAreExact) {
    table.store(1, 0, {-MateScore, 0}, {-2, -1, 0, 4}, 0, 0);  // at least 0, and 0 is the most
    EXPECT_TRUE(table.probe(1, {10, 11, 0, 4}).cutoff);
    table.store(2, 0, {0, MateScore - 1}, {5, 6, 0, 4}, 0, 0);
    EXPECT_TRUE(table.probe(2, {-11, -10, 0, 4}).cutoff);
}

TEST_F(TranspositionTableTest, ReplacesTheShallowestAndAmongEqualsTheFirst) {
    // 1 MB has 16384 buckets; keys that differ above bit 31 share one.
    const auto key = [](std::uint64_t i) { return (i << 32) | 5; };
    const int depths[] = {5, 3, 3, 7};
    for (int i = 0; i < 4; ++i) {
        store(key(i), depths[i]);
    }
    store(key(4), 1);
    EXPECT_TRUE(has(key(0)) && !has(key(1)) && has(key(2)) && has(key(3)) && has(key(4)));
    store(key(0), 2);  // the same position keeps its slot, also for less depth
    store(key(5), 9);
    EXPECT_FALSE(has(key(4)));
    EXPECT_TRUE(has(key(0)));
}

TEST_F(TranspositionTableTest, AmongEqualDepthsTheLargerAgeGoes) {
    const auto key = [](std::uint64_t i) { return (i << 32) | 5; };
    for (unsigned i = 0; i < 4; ++i) {
        store(key(i), 3, i == 2 ? 8 : 6);
    }
    store(key(4), 3, 6);
    EXPECT_FALSE(has(key(2)));
}

TEST_F(TranspositionTableTest, SizesAreRoundedDownToAPowerOfTwo) {
    ASSERT_TRUE(table.resize(3));
    EXPECT_EQ(table.sizeInMB(), 2U);
    EXPECT_EQ(table.fillPercentage(), 0.0);
    store(1, 1);
    EXPECT_DOUBLE_EQ(table.fillPercentage(), 100.0 / 65536);
}

// Two writers and a reader on one bucket: whatever comes back belongs together.
TEST_F(TranspositionTableTest, TornEntriesMatchNothing) {
    std::atomic<bool> done{false};
    const auto writer = [&](std::uint64_t seed) {
        for (std::uint64_t i = seed; i < 200000; i += 2) {
            const Key key = ((i % 16) << 32) | 5;
            table.store(key, 0, openLimits, wideWindow(0, 3), static_cast<int>(i % 16),
                        static_cast<Move>(i % 16 + 1));
        }
        done = true;
    };
    std::thread first(writer, 0);
    std::thread second(writer, 1);
    while (!done) {
        for (std::uint64_t i = 0; i < 16; ++i) {
            const TTProbe probe = table.probe((i << 32) | 5, wideWindow(0, 3));
            if (!probe.hit) continue;
            ASSERT_EQ(probe.score, static_cast<int>(i));
            ASSERT_EQ(probe.move, i + 1);
        }
    }
    first.join();
    second.join();
}

}  // namespace
}  // namespace vatro
