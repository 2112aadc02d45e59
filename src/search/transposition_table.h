// src/search/transposition_table.h - search results by position, shared by all search threads.
//
// Threads read and write without locks. A word of an entry is the key XOR the other word, so an
// entry torn between two writers does not match any key; a key that collides in all 64 bits still
// hands out a foreign move, which is why table moves are tested before they are played.
#pragma once

#include <atomic>
#include <cstdint>

#include "board/hash_table.h"
#include "board/move.h"
#include "board/types.h"

namespace vatro {

enum class Bound : std::uint16_t { Exact = 1, LowerBound = 2, UpperBound = 3 };

/// What a search knows about a position. Mate scores count from this position, not from the root.
struct TTData {
    Move move;
    std::int16_t score;
    Bound bound;
    std::uint8_t depth;
    std::uint8_t age;  // low 8 bits of the root's ply when it was written
};
static_assert(sizeof(TTData) == 8);

struct TTEntry {
    std::atomic<std::uint64_t> check;  // key XOR data
    std::atomic<std::uint64_t> data;   // a TTData, never 0 in use: its bound is not

    bool isEmpty() const { return data.load(std::memory_order_relaxed) == 0; }
};
static_assert(sizeof(TTEntry) == 16);

struct alignas(64) TTBucket {
    static constexpr int Size = 4;
    TTEntry entries[Size];
};
static_assert(sizeof(TTBucket) == 64);

/// The answer to a probe.
struct TTProbe {
    bool hit = false;     // the position is in the table
    bool cutoff = false;  // `score` decides the node
    int score = 0;        // relative to the root
    Move move = NoMove;
};

/// A search window and where it stands.
struct NodeWindow {
    int alpha;
    int beta;
    int height;  // plies above the root
    int depth;   // plies left to search
};

/// The lowest and highest score that are still possible at a node.
struct ScoreLimits {
    int lowest;
    int highest;
};

class TranspositionTable {
  public:
    /// Sizes in megabytes, 1 to 2048; all entries are empty then. False without memory for it: the
    /// old table stays.
    [[nodiscard]] bool resize(unsigned megabytes) { return buckets.resize(megabytes); }
    unsigned sizeInMB() const { return buckets.sizeInMB(); }
    bool exists() const { return buckets.exists(); }

    TTProbe probe(Key key, const NodeWindow& window) const;
    /// Stores a result with the bound that follows from the window and the limits. `ply` is the
    /// board's.
    void store(Key key,
               unsigned ply,
               const ScoreLimits& limits,
               const NodeWindow& window,
               int score,
               Move move);
    /// Fetches the bucket of a position that will be probed soon.
    void prefetch(Key key) const;

    /// Used entries among the first 65536, in percent.
    double fillPercentage() const;

  private:
    std::uint32_t indexOf(Key key) const {
        return static_cast<std::uint32_t>(key) & (buckets.entryCount() - 1);
    }
    HashTable<TTBucket> buckets;
};

inline void TranspositionTable::prefetch(Key key) const {
#if defined(__GNUC__)
    __builtin_prefetch(&buckets[indexOf(key)]);
#else
    static_cast<void>(key);
#endif
}

}  // namespace vatro
