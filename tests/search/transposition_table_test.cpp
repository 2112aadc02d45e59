// tests/search/transposition_table_test.cpp - what is stored comes back, and what it says of a
// window.
#include "search/transposition_table.h"

#include <atomic>
#include <thread>

#include <gtest/gtest.h>

#include "search/mate_score.h"
#include "search/node_window.h"

namespace vatro {
namespace {

constexpr ScoreLimits openLimits = {-MateScore, MateScore - 1};

struct TranspositionTableTest : testing::Test {
    void SetUp() override { ASSERT_TRUE(table.resize(1)); }
    void store(Key key, std::uint8_t depth, std::uint8_t age = 0) {
        table.store(key, {1, 10, Bound::Exact, depth, age});
    }
    bool has(Key key) { return table.probe(key).has_value(); }

    TranspositionTable table;
};
using TranspositionTableThreads = TranspositionTableTest;

TEST(MateScore, CountsFromThePositionInATable) {
    for (const int sign : {1, -1}) {
        EXPECT_EQ(scoreForTable(sign * 31990, 3), sign * 31993);
        EXPECT_EQ(scoreFromTable(sign * 31993, 5), sign * 31988);
        for (const int score : {0, sign, sign * MateThreshold}) {
            EXPECT_EQ(scoreForTable(score, 3), score);
            EXPECT_EQ(scoreFromTable(score, 3), score);
        }
    }
}

TEST(NodeWindow, ABoundAnswersOnlyOnItsSide) {
    const Bound atLeast50 = boundOf(50, {20, 50, 0, 4}, openLimits);
    EXPECT_TRUE(answers({49, 50, 0, 4}, 50, atLeast50));
    EXPECT_FALSE(answers({50, 51, 0, 4}, 50, atLeast50));
    const Bound atMost50 = boundOf(50, {50, 80, 0, 4}, openLimits);
    EXPECT_TRUE(answers({50, 51, 0, 4}, 50, atMost50));
    EXPECT_FALSE(answers({49, 50, 0, 4}, 50, atMost50));
}

TEST(NodeWindow, ScoresAtTheLimitsAreExact) {
    EXPECT_EQ(boundOf(0, {-2, -1, 0, 4}, {-MateScore, 0}),
              Bound::Exact);  // at least 0, and at most
    EXPECT_EQ(boundOf(0, {5, 6, 0, 4}, {0, MateScore - 1}), Bound::Exact);
    EXPECT_EQ(boundOf(7, {5, 9, 0, 4}, openLimits), Bound::Exact);
}

TEST_F(TranspositionTableTest, GivesBackWhatItWasGiven) {
    table.store(7, {9, -31990, Bound::UpperBound, 200, 255});
    const auto known = table.probe(7);
    ASSERT_TRUE(known);
    EXPECT_EQ(known->move, 9);
    EXPECT_EQ(known->score, -31990);
    EXPECT_EQ(known->bound, Bound::UpperBound);
    EXPECT_EQ(known->depth, 200);
    EXPECT_FALSE(has(7 + (Key{1} << 40)));
}

TEST_F(TranspositionTableTest, ReplacesTheShallowestAndAmongEqualsTheFirst) {
    // 1 MB has 16384 buckets; keys that differ above bit 31 share one.
    const auto key = [](std::uint64_t i) { return (i << 32) | 5; };
    const std::uint8_t depths[] = {5, 3, 3, 7};
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
TEST_F(TranspositionTableThreads, TornEntriesMatchNothing) {
    std::atomic<bool> done{false};
    int hits = 0;
    const auto writer = [&](std::uint64_t seed) {
        for (std::uint64_t i = seed; i < 200000; i += 2) {
            const Key key = ((i % 16) << 32) | 5;
            table.store(key, {static_cast<Move>(i % 16 + 1), static_cast<std::int16_t>(i % 16),
                              Bound::Exact, 3, 0});
        }
        done = true;
    };
    std::thread first(writer, 0);
    std::thread second(writer, 1);
    while (!done || hits == 0) {
        for (std::uint64_t i = 0; i < 16; ++i) {
            const auto known = table.probe((i << 32) | 5);
            if (!known) continue;
            ++hits;
            EXPECT_EQ(known->score, static_cast<int>(i));
            EXPECT_EQ(known->move, i + 1);
        }
    }
    first.join();
    second.join();
}

}  // namespace
}  // namespace vatro
