// search/transposition_table.h - search results by position, shared by all search threads.
//
// Threads read and write without locks. A word of an entry is the key XOR the other word, so an
// entry torn between two writers does not match any key; a key that collides in all 64 bits still
// hands out a foreign move, which is why table moves are tested before they are played.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>

#include "base/hash_table.h"
#include "board/move.h"
#include "board/types.h"
#include "search/node_window.h"

namespace vatro {

/// What a search has found out about a position.
struct TTData {
    Move move;           // the best one, NoMove for none
    std::int16_t score;  // as scoreForTable gives it
    Bound bound;
    std::uint8_t depth;
    std::uint8_t age;  // low 8 bits of the root's ply when it was written
};
static_assert(sizeof(TTData) == 8);

struct TTEntry {
    std::atomic<std::uint64_t> check;  // key XOR data
    std::atomic<std::uint64_t> data;   // a TTData, never 0 in use: its bound is not

    bool isEmpty() const { return data.load(std::memory_order_relaxed) == 0; }
    void touch() { touchWord(data); }
};
static_assert(sizeof(TTEntry) == 16);

using TTBuckets = HashTable<TTEntry, 4>;
static_assert(sizeof(TTBuckets::Bucket) == 64);  // a cache line

class TranspositionTable {
  public:
    /// Sizes in megabytes, 1 to 2048; all entries are empty then. False without memory for it: the
    /// old table stays.
    [[nodiscard]] bool resize(unsigned megabytes) { return buckets.resize(megabytes); }
    unsigned sizeInMB() const { return buckets.sizeInMB(); }
    std::uint64_t sizeInBytes() const { return buckets.sizeInBytes(); }
    void clear() { buckets.clear(); }
    void touch(std::uint64_t offset) { buckets.touch(offset); }

    /// What is stored for the position, if anything.
    std::optional<TTData> probe(Key key) const;
    /// Stores what is known now in place of what was known before, or of the bucket's least
    /// valuable entry.
    void store(Key key, TTData data);
    /// Fetches the bucket of a position that will be probed soon.
    void prefetch(Key key) const { buckets.prefetch(key); }

    /// Used entries among the first 65536, in percent.
    double fillPercentage() const { return buckets.fillPercentage(); }

  private:
    TTBuckets buckets;
};

}  // namespace vatro
