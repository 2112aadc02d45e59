// base/table_memory.cpp - zeroing a block; posix/ and windows/ allocate it.
#include "base/table_memory.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <thread>

#include "base/system_thread.h"

namespace vatro {

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
