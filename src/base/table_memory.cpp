// base/table_memory.cpp - allocating zeroed blocks: with large pages on Linux, plainly elsewhere.
#include "base/table_memory.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <thread>

#if defined(__linux__)
#include <sys/mman.h>
#endif

#include "base/system_thread.h"

namespace vatro {

#if defined(__linux__)

namespace {
constexpr std::size_t LargePage = std::size_t{2} << 20;  // bytes; the size on x86-64
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
    madvise(aligned, bytes, MADV_HUGEPAGE);  // a hint: small pages work too
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

void TableMemory::zero(void* block, std::size_t bytes) {
    constexpr std::size_t MostThreads = 4;                    // these use up the memory's bandwidth
    constexpr std::size_t LeastShare = std::size_t{8} << 20;  // bytes; less is not worth a thread
    const std::size_t parts = std::clamp<std::size_t>(
        bytes / LeastShare, 1,
        std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, MostThreads));
    const std::size_t share = bytes / parts;
    auto* const begin = static_cast<char*>(block);
    std::array<SystemThread, MostThreads - 1> helpers;  // wait for their end when they go
    for (std::size_t part = 1; part < parts; ++part) {
        char* const from = begin + part * share;
        const std::size_t size = part + 1 == parts ? bytes - part * share : share;
        const auto work = [from, size] { std::memset(from, 0, size); };
        if (!helpers[part - 1].start(work, SystemThread::SmallStackSize)) work();
    }
    std::memset(begin, 0, share);
}

}  // namespace vatro
