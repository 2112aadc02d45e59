// tools/perft_hash.cpp - creating and clearing the perft hash.
#include "tools/perft_hash.h"

#include "base/console.h"
#include "base/text.h"

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

}  // namespace vatro
