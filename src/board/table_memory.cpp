// src/board/table_memory.cpp - the system's ways of giving zeroed memory.
#include "board/table_memory.h"

#include <cstdlib>
#include <memory>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace vatro {

#if defined(__linux__)

namespace {
constexpr std::size_t LargePage = std::size_t{2} << 20;  // bytes; of x86-64 and most others
}

TableMemory::TableMemory(std::size_t bytes) {
    const std::size_t size = bytes + LargePage;
    void* const memory =
        mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) return;
    block = memory;
    blockSize = size;
    std::size_t space = size;
    aligned = memory;
    std::align(LargePage, bytes, aligned, space);
    madvise(aligned, bytes, MADV_HUGEPAGE);  // only a wish
}

TableMemory::~TableMemory() {
    if (block) munmap(block, blockSize);
}

#else

namespace {
constexpr std::size_t CacheLine = 64;  // bytes
}

TableMemory::TableMemory(std::size_t bytes) {
    block = std::calloc(bytes + CacheLine, 1);
    if (!block) return;
    std::size_t space = bytes + CacheLine;
    aligned = block;
    std::align(CacheLine, bytes, aligned, space);
}

TableMemory::~TableMemory() { std::free(block); }

#endif

}  // namespace vatro
