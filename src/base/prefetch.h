// base/prefetch.h - asking for memory before it is needed.
#pragma once

namespace vatro {

/// Fetches the cache line of `address`, which will be read soon. A hint: the address is not
/// checked.
inline void prefetch([[maybe_unused]] const void* address) {
#if defined(__GNUC__)
    __builtin_prefetch(address);
    asm volatile("");  // or g++ takes a function that only fetches for one without an effect
#endif
}

}  // namespace vatro
