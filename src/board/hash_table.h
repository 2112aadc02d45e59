// src/board/hash_table.h - the memory of a hash table: a power of two of zeroed entries.
//
// The memory is not touched before it is used, so that a large table costs nothing at start-up.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <utility>

#include "board/table_memory.h"

namespace vatro {

/// Entry: a plain record that means "empty" when all its bytes are zero, and says so by `isEmpty`.
template <typename Entry>
class HashTable {
  public:
    /// Allocates the largest power-of-two number of entries that fits in `megabytes` (1 or more),
    /// all empty. False when there is no memory for it: the old entries then stay.
    [[nodiscard]] bool resize(unsigned megabytes) {
        const std::uint64_t bytes = std::uint64_t{megabytes} << 20;
        const std::uint64_t count = std::bit_floor(bytes / sizeof(Entry));
        TableMemory fresh(static_cast<std::size_t>(count * sizeof(Entry)));
        if (!fresh.data()) return false;
        memory = std::move(fresh);
        first = static_cast<Entry*>(memory.data());
        entries = static_cast<std::uint32_t>(count);
        return true;
    }

    void clear() {
        if (first) std::fill_n(reinterpret_cast<char*>(first), sizeInBytes(), '\0');
    }

    bool exists() const { return first != nullptr; }
    std::uint32_t entryCount() const { return entries; }
    std::uint64_t sizeInBytes() const { return std::uint64_t{entries} * sizeof(Entry); }
    unsigned sizeInMB() const { return static_cast<unsigned>(sizeInBytes() >> 20); }

    Entry& operator[](std::uint32_t index) { return first[index]; }
    const Entry& operator[](std::uint32_t index) const { return first[index]; }

    /// Percentage of used entries, from the first 65536 of them; 0.0 to 100.0. Any thread; exact
    /// only between searches.
    double fillPercentage() const {
        constexpr std::uint32_t Sample = 65536;
        unsigned used = 0;
        for (std::uint32_t i = 0; i < std::min(entries, Sample); ++i) {
            if (!first[i].isEmpty()) ++used;
        }
        return used * 100.0 / Sample;
    }

  private:
    TableMemory memory;
    Entry* first = nullptr;
    std::uint32_t entries = 0;
};

}  // namespace vatro
