// tools/perft_hash.cpp - creating, clearing and measuring the perft hash.
#include "tools/perft_hash.h"

#include <algorithm>

#include "board/console.h"

namespace vatro {

bool PerftHashTable::prepare() {
    if (buckets.exists()) {
        buckets.clear();
        return true;
    }
    if (!buckets.resize(sizeMB)) return false;
    say(formatted("# new size of Perft hash: %u MB\n", buckets.sizeInMB()));
    return true;
}

double PerftHashTable::fillPercentage() const {
    constexpr std::uint32_t Sample = 65536;  // entries
    unsigned used = 0;
    for (std::uint32_t i = 0; i < std::min(entryCount(), Sample) / PerftBucket::Size; ++i) {
        for (const PerftEntry& entry : buckets[i].entries) {
            if (!entry.isEmpty()) ++used;
        }
    }
    return used * 100.0 / Sample;
}

}  // namespace vatro
