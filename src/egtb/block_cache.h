// egtb/block_cache.h - inflated blocks of all tables, shared by all search threads.
//
// Reading takes no lock: each slot has a version that is odd while its block is replaced, and a
// reader that sees the version change discards what it read. Replacing a block locks one set.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>

#include "egtb/large_array.h"

namespace vatro::egtb {

class BlockCache {
  public:
    /// Room for as many blocks of `blockSize` values as fit in `bytes`, possibly none.
    BlockCache(std::size_t bytes, std::uint32_t blockSize);

    /// The value at `offset` of a block, or -1 when the block is not there. Any thread.
    int find(int table, std::uint32_t block, std::uint32_t offset);

    /// Keeps a copy of a block of `size` values, in place of one not used lately. Any thread.
    void insert(int table, std::uint32_t block, const std::uint8_t* values, std::uint32_t size);

    std::size_t capacity() const { return slotCount; }

  private:
    // Eight slots of 16 bytes are two cache lines to search for a block. Tuned; no derivation.
    static constexpr std::size_t SlotsPerSet = 8;
    static constexpr int ValuesPerWord = 8;

    struct Slot {
        std::atomic<std::uint64_t> key{0};      // 0 for an empty slot
        std::atomic<std::uint32_t> version{0};  // odd while the slot is written
        std::atomic<bool> wasUsed{false};       // since the clock hand last passed
    };
    struct Set {
        std::mutex writing;
        std::size_t hand = 0;  // next slot to consider for replacement; guarded by `writing`
    };

    static std::uint64_t keyOf(int table, std::uint32_t block) {
        return (static_cast<std::uint64_t>(table + 1) << 32) | block;
    }
    std::size_t setOf(std::uint64_t key) const;
    std::size_t slotsIn(std::size_t set) const;

    std::size_t slotCount;
    std::size_t setCount;
    std::size_t wordsPerSlot;
    std::unique_ptr<Slot[]> slots;
    std::unique_ptr<Set[]> sets;
    /// The values, eight in a word, read and written atomically. Not touched before they are used:
    /// whoever asks for a large cache does not wait until it is cleared.
    LargeArray<std::uint64_t> words;
};

}  // namespace vatro::egtb
