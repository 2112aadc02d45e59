// base/posix/table_memory.cpp - zeroed blocks by mmap, in large pages on Linux.
#include "base/table_memory.h"

#include <memory>
#include <sys/mman.h>

namespace vatro {
namespace {

constexpr std::size_t LargePage = std::size_t{2} << 20;  // bytes; the size on x86-64

}  // namespace

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
#if defined(MADV_HUGEPAGE)
    madvise(aligned, bytes, MADV_HUGEPAGE);  // a hint: small pages work too
#endif
}

TableMemory::~TableMemory() {
    if (block) munmap(block, blockSize);
}

}  // namespace vatro
