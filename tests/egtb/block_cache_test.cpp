// tests/egtb/block_cache_test.cpp - the cache keeps what fits and never mixes up blocks.
#include "egtb/block_cache.h"

#include <array>
#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace vatro::egtb {
namespace {

constexpr std::uint32_t BlockSize = 1024;
constexpr std::size_t SlotBytes = BlockSize;
using Block = std::array<std::uint8_t, BlockSize>;

/// A block whose values tell which block and which offset they belong to.
std::uint8_t valueAt(int table, std::uint32_t block, std::uint32_t offset) {
    return static_cast<std::uint8_t>(7 * table + 31 * block + offset);
}

void insert(BlockCache& cache, int table, std::uint32_t block, std::uint32_t size = BlockSize) {
    Block values;
    for (std::uint32_t i = 0; i < BlockSize; ++i) {
        values[i] = valueAt(table, block, i);
    }
    cache.insert(table, block, values.data(), size);
}

TEST(BlockCache, NeverHoldsMoreThanFits) {
    BlockCache cache(10 * SlotBytes + SlotBytes / 2, BlockSize);
    EXPECT_EQ(cache.capacity(), 10U);
    for (std::uint32_t block = 0; block < 1000; ++block) {
        insert(cache, 3, block);
        EXPECT_EQ(cache.find(3, block, 17), valueAt(3, block, 17)) << "just inserted";
    }
    int held = 0;
    for (std::uint32_t block = 0; block < 1000; ++block) {
        held += cache.find(3, block, 0) >= 0;
        EXPECT_EQ(cache.find(4, block, 0), -1);
    }
    EXPECT_LE(held, 10);
    EXPECT_GE(held, 9);  // the last set has two slots, the others eight
}

TEST(BlockCache, ShortLastBlockIsReadToItsEnd) {
    BlockCache cache(BlockSize, BlockSize);
    insert(cache, 0, 5, 13);
    EXPECT_EQ(cache.find(0, 5, 12), valueAt(0, 5, 12));
}

TEST(BlockCache, WithoutRoomItHoldsNothing) {
    BlockCache cache(BlockSize - 1, BlockSize);
    insert(cache, 0, 0);
    EXPECT_EQ(cache.find(0, 0, 0), -1);
}

TEST(BlockCacheThreads, ReadersSeeOnlyWholeBlocks) {
    BlockCache cache(8 * SlotBytes, BlockSize);
    std::atomic<int> wrong{0};
    std::atomic<std::uint64_t> hits{0};
    const auto work = [&](std::uint32_t seed) {
        std::uint32_t state = seed;
        for (int i = 0; i < 20000; ++i) {
            state = state * 1664525 + 1013904223;
            const std::uint32_t block = (state >> 16) % 24;
            const std::uint32_t offset = (state >> 8) % BlockSize;
            const int value = cache.find(1, block, offset);
            if (value < 0) {
                insert(cache, 1, block);
            } else {
                hits.fetch_add(1, std::memory_order_relaxed);
                if (value != valueAt(1, block, offset)) ++wrong;
            }
        }
    };
    std::vector<std::thread> threads;
    for (std::uint32_t seed = 1; seed <= 4; ++seed) {
        threads.emplace_back(work, seed);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_GT(hits, 1000U);
}

}  // namespace
}  // namespace vatro::egtb
