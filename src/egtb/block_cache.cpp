// egtb/block_cache.cpp - a set-associative cache with lock-free reading.
#include "egtb/block_cache.h"

#include <algorithm>
#include <cstring>

namespace vatro::egtb {

BlockCache::BlockCache(std::size_t bytes, std::uint32_t blockSize)
    : slotCount(bytes / blockSize),
      setCount((slotCount + SlotsPerSet - 1) / SlotsPerSet),
      wordsPerSlot(blockSize / ValuesPerWord),
      slots(new Slot[slotCount]),
      sets(new Set[setCount]),
      words(slotCount * wordsPerSlot) {}

std::size_t BlockCache::setOf(std::uint64_t key) const {
    // Multiplying by the golden ratio spreads neighbouring blocks over the sets.
    const std::uint64_t mixed = (key * 0x9E3779B97F4A7C15ULL) >> 32;
    return static_cast<std::size_t>((mixed * setCount) >> 32);
}

std::size_t BlockCache::slotsIn(std::size_t set) const {
    return std::min(SlotsPerSet, slotCount - set * SlotsPerSet);
}

int BlockCache::find(int table, std::uint32_t block, std::uint32_t offset) {
    if (slotCount == 0) return -1;
    const std::uint64_t key = keyOf(table, block);
    const std::size_t set = setOf(key);
    const std::size_t first = set * SlotsPerSet;
    for (std::size_t i = first; i < first + slotsIn(set); ++i) {
        Slot& slot = slots[i];
        // An even version was stored with release after its key and values, so they are visible
        // here. The acquiring loads keep the second load of the version behind them.
        const std::uint32_t version = slot.version.load(std::memory_order_acquire);
        if (slot.key.load(std::memory_order_acquire) != key) continue;
        const std::uint64_t word =
            std::atomic_ref<std::uint64_t>(words[i * wordsPerSlot + offset / ValuesPerWord])
                .load(std::memory_order_acquire);
        if ((version & 1) || slot.version.load(std::memory_order_relaxed) != version) return -1;
        if (!slot.wasUsed.load(std::memory_order_relaxed)) {
            slot.wasUsed.store(true, std::memory_order_relaxed);
        }
        return static_cast<int>((word >> (8 * (offset % ValuesPerWord))) & 0xFF);
    }
    return -1;
}

void BlockCache::insert(int table,
                        std::uint32_t block,
                        const std::uint8_t* values,
                        std::uint32_t size) {
    if (slotCount == 0) return;
    const std::uint64_t key = keyOf(table, block);
    const std::size_t setIndex = setOf(key);
    const std::size_t first = setIndex * SlotsPerSet;
    const std::size_t count = slotsIn(setIndex);
    Set& set = sets[setIndex];
    const std::lock_guard<std::mutex> lock(set.writing);
    // Another thread may have read the same block meanwhile.
    for (std::size_t i = first; i < first + count; ++i) {
        if (slots[i].key.load(std::memory_order_relaxed) == key) return;
    }
    // The first round clears every mark, so the second finds a slot at the latest.
    while (slots[first + set.hand].wasUsed.exchange(false, std::memory_order_relaxed)) {
        set.hand = (set.hand + 1) % count;
    }
    const std::size_t victim = first + set.hand;
    set.hand = (set.hand + 1) % count;

    Slot& slot = slots[victim];
    const std::uint32_t version = slot.version.load(std::memory_order_relaxed);
    slot.version.store(version + 1, std::memory_order_relaxed);
    // Stored with release, so that a reader of the new key or a new word sees the odd version too.
    slot.key.store(key, std::memory_order_release);
    std::uint64_t* to = &words[victim * wordsPerSlot];
    for (std::uint32_t at = 0; at < size; at += ValuesPerWord) {
        std::uint64_t word = 0;
        for (std::uint32_t i = 0; i < std::min<std::uint32_t>(ValuesPerWord, size - at); ++i) {
            word |= std::uint64_t{values[at + i]} << (8 * i);
        }
        std::atomic_ref<std::uint64_t>(to[at / ValuesPerWord])
            .store(word, std::memory_order_release);
    }
    slot.version.store(version + 2, std::memory_order_release);
    // A new block counts as used, or the next insertion could evict it before its first use.
    slot.wasUsed.store(true, std::memory_order_relaxed);
}

}  // namespace vatro::egtb
