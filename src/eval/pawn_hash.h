// eval/pawn_hash.h - the pawn structures met before, shared by all search threads without a lock.
//
// The first word of an entry is the pawn key XOR the other words: when two threads have written
// into one entry at once, its words belong to different keys and it matches no key.
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>

#include "base/hash_table.h"
#include "board/types.h"

namespace vatro {

/// All that the evaluation takes from the pawns alone.
struct PawnStructure {
    SquareMask passed[ColourCount];  // pawns that no enemy pawn can stop any more
    ScorePair score;                 // White's terms minus Black's
    std::uint8_t openFiles;          // bit f: no pawn on file f (0 = a)
    std::uint8_t halfOpenFiles;      // bit f: pawns of exactly one colour on file f
};

/// Relaxed loads and stores suffice: the first word vouches for the others.
struct alignas(32) PawnHashEntry {
    std::array<std::atomic<std::uint64_t>, 4> words;

    void touch() { touchWord(words[0]); }
    bool isEmpty() const {
        return std::all_of(words.begin(), words.end(), [](const auto& word) {
            return word.load(std::memory_order_relaxed) == 0;
        });
    }
};
static_assert(sizeof(PawnHashEntry) == 32);

class PawnHashTable : public HashTable<PawnHashEntry, 1> {
  public:
    /// Finds the structure stored for the key. False, with `found` overwritten, when there is none.
    [[nodiscard]] bool probe(Key pawnKey, PawnStructure& found) const {
        const PawnHashEntry& entry = bucketOf(pawnKey).entries[0];
        const std::uint64_t white = entry.words[1].load(std::memory_order_relaxed);
        const std::uint64_t black = entry.words[2].load(std::memory_order_relaxed);
        const std::uint64_t rest = entry.words[3].load(std::memory_order_relaxed);
        found.passed[White] = white;
        found.passed[Black] = black;
        found.score.mg = static_cast<std::int16_t>(rest);
        found.score.eg = static_cast<std::int16_t>(rest >> 16);
        found.openFiles = static_cast<std::uint8_t>(rest >> 32);
        found.halfOpenFiles = static_cast<std::uint8_t>(rest >> 40);
        const std::uint64_t check = entry.words[0].load(std::memory_order_relaxed);
        return (check ^ white ^ black ^ rest) == pawnKey;
    }

    /// Stores in place of whatever stood at the key's index.
    void store(Key pawnKey, const PawnStructure& structure) {
        const std::uint64_t rest =
            static_cast<std::uint16_t>(structure.score.mg) |
            (std::uint64_t{static_cast<std::uint16_t>(structure.score.eg)} << 16) |
            (std::uint64_t{structure.openFiles} << 32) |
            (std::uint64_t{structure.halfOpenFiles} << 40);
        const std::uint64_t white = structure.passed[White];
        const std::uint64_t black = structure.passed[Black];
        PawnHashEntry& entry = bucketOf(pawnKey).entries[0];
        entry.words[0].store(pawnKey ^ white ^ black ^ rest, std::memory_order_relaxed);
        entry.words[1].store(white, std::memory_order_relaxed);
        entry.words[2].store(black, std::memory_order_relaxed);
        entry.words[3].store(rest, std::memory_order_relaxed);
    }
};

}  // namespace vatro
