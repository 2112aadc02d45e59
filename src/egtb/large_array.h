// egtb/large_array.h - arrays of hundreds of megabytes, read and written at random.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>

#include "base/table_memory.h"

namespace vatro::egtb {

/// A fixed number of elements of a plain type, all bytes zero at first, in large pages where the
/// system has them. Unlike a vector it takes no room for what is never touched.
template <typename T>
class LargeArray {
  public:
    LargeArray() = default;
    /// Throws std::bad_alloc.
    explicit LargeArray(std::uint64_t count) : memory(count * sizeof(T)), elementCount(count) {
        if (!memory.data()) throw std::bad_alloc();
    }

    T& operator[](std::uint64_t i) { return static_cast<T*>(memory.data())[i]; }
    const T& operator[](std::uint64_t i) const { return static_cast<const T*>(memory.data())[i]; }
    std::uint64_t size() const { return elementCount; }

  private:
    TableMemory memory;
    std::uint64_t elementCount = 0;
};

}  // namespace vatro::egtb
