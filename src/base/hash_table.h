// base/hash_table.h - a hash table with a power-of-two number of buckets.
//
// A new table touches none of its memory, so a large one does not delay the start.
#pragma once

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdint>
#include <utility>

#include "base/prefetch.h"
#include "base/table_memory.h"

namespace vatro {

/// The `Ways` entries that a key may use. Entry: a plain record; all bytes zero means empty, and
/// `isEmpty` tells.
template <typename Entry, int Ways>
struct alignas(Ways * sizeof(Entry)) HashBucket {
    static constexpr int Size = Ways;
    Entry entries[Ways];
};

/// Writes a word with what it holds. An exchange is the one write of nothing new that no compiler
/// turns into a read, for which the system would not hand out a page.
inline void touchWord(std::atomic<std::uint64_t>& word) {
    std::uint64_t zero = 0;  // a word that is not has been written already
    word.compare_exchange_strong(zero, 0, std::memory_order_relaxed);
}

/// The table does not know how an entry matches a key: its owner searches the bucket.
template <typename Entry, int Ways>
class HashTable {
  public:
    using Bucket = HashBucket<Entry, Ways>;

    /// Allocates the largest power-of-two number of buckets that fits in `megabytes` (1 or more),
    /// all empty. False when there is no memory for it: the table then stays as it was.
    [[nodiscard]] bool resize(unsigned megabytes) {
        const std::uint64_t bytes = std::uint64_t{megabytes} << 20;
        const std::uint64_t count = std::bit_floor(bytes / sizeof(Bucket));
        TableMemory fresh(static_cast<std::size_t>(count * sizeof(Bucket)));
        if (!fresh.data()) return false;
        memory = std::move(fresh);
        buckets = static_cast<Bucket*>(memory.data());
        bucketCount = static_cast<std::uint32_t>(count);
        return true;
    }

    /// Empties the table. No other thread may use it.
    void clear() {
        if (exists()) TableMemory::zero(buckets, static_cast<std::size_t>(sizeInBytes()));
    }

    /// Makes the system hand out the page at `offset` bytes. Entry::touch does it without changing
    /// the entry, even beside a search.
    void touch(std::uint64_t offset) { buckets[offset / sizeof(Bucket)].entries[0].touch(); }

    bool exists() const { return buckets != nullptr; }
    std::uint32_t entryCount() const { return bucketCount * Ways; }
    std::uint64_t sizeInBytes() const { return std::uint64_t{bucketCount} * sizeof(Bucket); }
    unsigned sizeInMB() const { return static_cast<unsigned>(sizeInBytes() >> 20); }

    /// The bucket of a key. The table must have memory.
    Bucket& bucketOf(std::uint64_t key) { return buckets[indexOf(key)]; }
    const Bucket& bucketOf(std::uint64_t key) const { return buckets[indexOf(key)]; }
    /// Fetches the bucket of a key that will be looked up soon.
    void prefetch(std::uint64_t key) const { vatro::prefetch(&bucketOf(key)); }

    /// Used entries among the first 65536, in percent of 65536 (a smaller table never reaches
    /// 100). Any thread; exact only between searches.
    double fillPercentage() const {
        constexpr std::uint32_t Sample = 65536;  // entries
        unsigned used = 0;
        for (std::uint32_t i = 0; i < std::min(bucketCount, Sample / Ways); ++i) {
            for (const Entry& entry : buckets[i].entries) {
                used += !entry.isEmpty();
            }
        }
        return used * 100.0 / Sample;
    }

  private:
    std::uint32_t indexOf(std::uint64_t key) const {
        return static_cast<std::uint32_t>(key) & (bucketCount - 1);
    }

    TableMemory memory;
    Bucket* buckets = nullptr;  // in `memory`
    std::uint32_t bucketCount = 0;
};

}  // namespace vatro
