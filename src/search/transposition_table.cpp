// src/search/transposition_table.cpp - probing and storing.
#include "search/transposition_table.h"

#include <algorithm>
#include <bit>

#include "eval/scores.h"

namespace vatro {
namespace {

TTData unpack(std::uint64_t word) { return std::bit_cast<TTData>(word); }

/// Shallow entries are given up first; among equal depths the one with the larger age.
int replacementValue(const TTData& data) { return data.depth * 256 + 256 - data.age; }

Bound boundOf(int score, const NodeWindow& window, const ScoreLimits& limits) {
    if (score >= window.beta) return score >= limits.highest ? Bound::Exact : Bound::LowerBound;
    if (score <= window.alpha) return score <= limits.lowest ? Bound::Exact : Bound::UpperBound;
    return Bound::Exact;
}

}  // namespace

TTProbe TranspositionTable::probe(Key key, const NodeWindow& window) const {
    TTProbe result;
    for (const TTEntry& entry : buckets[indexOf(key)].entries) {
        const std::uint64_t word = entry.data.load(std::memory_order_relaxed);
        if ((entry.check.load(std::memory_order_relaxed) ^ word) != key || word == 0) continue;
        const TTData data = unpack(word);
        result.hit = true;
        result.move = data.move;
        if (data.depth < window.depth) return result;
        int score = data.score;
        if (score > MateThreshold) score -= window.height;
        if (score < -MateThreshold) score += window.height;
        result.score = score;
        switch (data.bound) {
            case Bound::Exact:
                result.cutoff = true;
                break;
            case Bound::LowerBound:
                result.cutoff = score >= window.beta;
                break;
            case Bound::UpperBound:
                result.cutoff = score <= window.alpha;
                break;
        }
        return result;
    }
    return result;
}

void TranspositionTable::store(Key key,
                               unsigned ply,
                               const ScoreLimits& limits,
                               const NodeWindow& window,
                               int score,
                               Move move) {
    const Bound bound = boundOf(score, window, limits);
    if (score > MateThreshold) {
        score += window.height;
    } else if (score < -MateThreshold) {
        score -= window.height;
    }
    TTEntry* slot = nullptr;
    TTEntry* shallowest = nullptr;
    int lowestValue = 0;
    TTEntry* empty = nullptr;
    for (TTEntry& entry : buckets[indexOf(key)].entries) {
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
        if (!shallowest || value < lowestValue) {
            shallowest = &entry;
            lowestValue = value;
        }
    }
    if (!slot) slot = empty ? empty : shallowest;
    const TTData data = {move, static_cast<std::int16_t>(score), bound,
                         static_cast<std::uint8_t>(window.depth),
                         static_cast<std::uint8_t>(ply - static_cast<unsigned>(window.height))};
    const auto word = std::bit_cast<std::uint64_t>(data);
    slot->check.store(key ^ word, std::memory_order_relaxed);
    slot->data.store(word, std::memory_order_relaxed);
}

double TranspositionTable::fillPercentage() const {
    constexpr std::uint32_t Sample = 65536;  // entries
    unsigned used = 0;
    const std::uint32_t sampled = std::min(buckets.entryCount(), Sample / TTBucket::Size);
    for (std::uint32_t i = 0; i < sampled; ++i) {
        for (const TTEntry& entry : buckets[i].entries) {
            if (!entry.isEmpty()) ++used;
        }
    }
    return used * 100.0 / Sample;
}

}  // namespace vatro
