// base/table_memory.h - memory for the hash tables.
#pragma once

#include <cstddef>
#include <utility>

namespace vatro {

/// A zeroed block, which the system backs with memory only where it is touched. Large pages are
/// requested on Linux: tables are read at random, and with small pages address translation costs a
/// search a quarter of its speed (measured).
class TableMemory {
  public:
    static constexpr std::size_t PageSize = 4096;  // bytes; no system's pages are smaller

    /// Aligned to 64 bytes or more. `data()` is null when there is no memory.
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

    /// Zeroes a block on as many threads as are free to help.
    static void zero(void* block, std::size_t bytes);

  private:
    void swap(TableMemory& other) noexcept {
        std::swap(block, other.block);
        std::swap(blockSize, other.blockSize);
        std::swap(aligned, other.aligned);
    }

    void* block = nullptr;  // as allocated
    std::size_t blockSize = 0;
    void* aligned = nullptr;  // within the block
};

}  // namespace vatro
