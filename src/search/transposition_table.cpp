// search/transposition_table.cpp - probing and storing.
#include "search/transposition_table.h"

#include <bit>

namespace vatro {
namespace {

TTData unpack(std::uint64_t word) { return std::bit_cast<TTData>(word); }

/// Shallow entries are given up first; among equal depths the one with the larger age.
int replacementValue(const TTData& data) { return data.depth * 256 + 256 - data.age; }

}  // namespace

std::optional<TTData> TranspositionTable::probe(Key key) const {
    for (const TTEntry& entry : buckets.bucketOf(key).entries) {
        const std::uint64_t word = entry.data.load(std::memory_order_relaxed);
        if ((entry.check.load(std::memory_order_relaxed) ^ word) != key || word == 0) continue;
        return unpack(word);
    }
    return std::nullopt;
}

void TranspositionTable::store(Key key, TTData data) {
    TTEntry* slot = nullptr;
    TTEntry* empty = nullptr;
    TTEntry* leastValuable = nullptr;
    int lowestValue = 0;
    for (TTEntry& entry : buckets.bucketOf(key).entries) {
        const std::uint64_t word = entry.data.load(std::memory_order_relaxed);
        if (word == 0) {
            if (!empty) empty = &entry;
            continue;
        }
        if ((entry.check.load(std::memory_order_relaxed) ^ word) == key) {
            slot = &entry;
            break;
        }
        const int value = replacementValue(unpack(word));
        if (!leastValuable || value < lowestValue) {
            leastValuable = &entry;
            lowestValue = value;
        }
    }
    if (!slot) slot = empty ? empty : leastValuable;
    const auto word = std::bit_cast<std::uint64_t>(data);
    slot->check.store(key ^ word, std::memory_order_relaxed);
    slot->data.store(word, std::memory_order_relaxed);
}

}  // namespace vatro
