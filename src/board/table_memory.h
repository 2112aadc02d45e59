// src/board/table_memory.h - large zeroed memory from the system.
#pragma once

#include <cstddef>
#include <utility>

namespace vatro {

/// Memory that reads as zero and takes no room before it is touched. Where the system has large
/// pages they are asked for: a table is read at random, and small pages cost a search a quarter of
/// its speed in address translation (measured).
class TableMemory {
  public:
    /// Aligned to 64 bytes at least. `data()` is null when there is no memory.
    explicit TableMemory(std::size_t bytes);
    TableMemory() = default;
    TableMemory(TableMemory&& other) noexcept { swap(other); }
    TableMemory& operator=(TableMemory&& other) noexcept {
        swap(other);
        return *this;
    }
    TableMemory(const TableMemory&) = delete;
    TableMemory& operator=(const TableMemory&) = delete;
    ~TableMemory();

    void* data() const { return aligned; }

  private:
    void swap(TableMemory& other) noexcept {
        std::swap(block, other.block);
        std::swap(blockSize, other.blockSize);
        std::swap(aligned, other.aligned);
    }

    void* block = nullptr;  // as the system gave it
    std::size_t blockSize = 0;
    void* aligned = nullptr;
};

}  // namespace vatro
