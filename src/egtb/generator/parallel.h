// src/egtb/generator/parallel.h - work on index ranges, shared out among threads.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <functional>
#include <system_error>
#include <thread>
#include <vector>

namespace vatro::egtb {

/// Calls `work(begin, end)` for ranges that together are 0 to `count`, on up to `threads` threads,
/// and returns when all are done. Ranges begin at multiples of `grain`. `work` may not throw.
template <typename Work>
void parallelFor(int threads, std::uint64_t count, std::uint64_t grain, const Work& work) {
    std::atomic<std::uint64_t> next{0};
    const auto run = [&] {
        for (;;) {
            const std::uint64_t begin = next.fetch_add(grain, std::memory_order_relaxed);
            if (begin >= count) return;
            work(begin, std::min(begin + grain, count));
        }
    };
    std::vector<std::thread> helpers;
    const std::uint64_t useful = std::min<std::uint64_t>(threads, (count + grain - 1) / grain);
    try {
        for (std::uint64_t i = 1; i < useful; ++i) {
            helpers.emplace_back(run);
        }
    } catch (const std::exception&) {
        // Fewer threads do the same work.
    }
    run();
    for (std::thread& helper : helpers) {
        helper.join();
    }
}

}  // namespace vatro::egtb
