// tools/perft_hash.h - leaf counts of positions that a perft run has met before.
//
// Node counts of a run depend on which entries survive, so the rules of probing and replacing are
// part of what the commands print.
#pragma once

#include <cstdint>

#include "base/hash_table.h"
#include "board/types.h"

namespace vatro {

struct PerftEntry {
    std::uint64_t leafCount;    // leaves below the position
    std::uint64_t keyAndDepth;  // bits 0-15: depth left; above them the low 48 bits of the key

    unsigned depth() const { return keyAndDepth & 0xFFFF; }
    std::uint64_t keyBits() const { return keyAndDepth >> 16; }
    bool isEmpty() const { return keyBits() == 0; }
};
static_assert(sizeof(PerftEntry) == 16);

using PerftBuckets = HashTable<PerftEntry, 4>;
static_assert(sizeof(PerftBuckets::Bucket) == 64);  // a cache line

class PerftHashTable {
  public:
    static constexpr unsigned DefaultSizeMB = 64;

    /// The size takes effect when the table is created.
    explicit PerftHashTable(unsigned megabytes = DefaultSizeMB) : sizeMB(megabytes) {}

    /// Empties the table; the first call creates it and prints its size. False when there is no
    /// memory for it; it cannot be used then.
    [[nodiscard]] bool prepare();

    /// The entry that answers for `key` at `depth`, nullptr when there is none.
    const PerftEntry* probe(Key key, unsigned depth) const;
    void store(Key key, std::uint64_t leafCount, unsigned depth);

    std::uint32_t entryCount() const { return buckets.entryCount(); }
    /// Used entries among the first 65536, in percent of 65536.
    double fillPercentage() const { return buckets.fillPercentage(); }

  private:
    static std::uint64_t keyBitsOf(Key key) { return key & 0xFFFFFFFFFFFFULL; }

    PerftBuckets buckets;
    unsigned sizeMB;
};

inline const PerftEntry* PerftHashTable::probe(Key key, unsigned depth) const {
    for (const PerftEntry& entry : buckets.bucketOf(key).entries) {
        if (entry.keyBits() == keyBitsOf(key)) return entry.depth() == depth ? &entry : nullptr;
    }
    return nullptr;
}

inline void PerftHashTable::store(Key key, std::uint64_t leafCount, unsigned depth) {
    PerftBuckets::Bucket& bucket = buckets.bucketOf(key);
    PerftEntry* chosen = nullptr;
    for (PerftEntry& entry : bucket.entries) {
        if (entry.keyBits() == keyBitsOf(key)) {
            chosen = &entry;
            break;
        }
        // An empty entry beats a used one, then the smaller depth, then the earlier place.
        const bool better =
            !chosen || (!chosen->isEmpty() && (entry.isEmpty() || entry.depth() < chosen->depth()));
        if (better) chosen = &entry;
    }
    *chosen = {leafCount, (keyBitsOf(key) << 16) | depth};
}

}  // namespace vatro
