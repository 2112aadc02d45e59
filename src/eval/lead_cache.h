// eval/lead_cache.h - the positional leads that one thread has computed.
//
// Two fifths of the positions that a search evaluates have been evaluated before: along another
// order of the same captures, or in an earlier iteration.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "board/types.h"

namespace vatro {

/// White's leads by position. An entry is a lead in the low 16 bits and the key in the others; what
/// is cut off of the key is, but for two bits, the entry's place.
class LeadCache {
  public:
    std::optional<int> find(Key key) const {
        const std::uint64_t entry = entries[placeOf(key)];
        if ((entry ^ key) >> LeadBits) return std::nullopt;
        return static_cast<std::int16_t>(entry);
    }
    void store(Key key, int lead) {
        entries[placeOf(key)] = (key >> LeadBits << LeadBits) | static_cast<std::uint16_t>(lead);
    }

  private:
    static constexpr int LeadBits = 16;
    static constexpr int PlaceBits = 14;  // 128 KB, a part of the second-level cache; measured
    static std::size_t placeOf(Key key) { return key & ((1U << PlaceBits) - 1); }

    std::array<std::uint64_t, 1U << PlaceBits> entries{};
};

}  // namespace vatro
