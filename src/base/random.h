// base/random.h - the random choices of the engine: moves to play, positions to test.
#pragma once

#include <cstdlib>

namespace vatro {

/// 0 to `limit` - 1, drawn with std::rand.
inline unsigned randomBelow(unsigned limit) { return static_cast<unsigned>(std::rand()) % limit; }

}  // namespace vatro
