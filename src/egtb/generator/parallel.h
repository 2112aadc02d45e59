// egtb/generator/parallel.h - work on ranges of numbers, shared among threads.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <functional>
#include <system_error>
#include <thread>
#include <vector>

namespace vatro::egtb {

/// Who works, and whether the user wants it to end.
struct Workers {
    int threads = 1;
    /// Set by a signal handler, for example; null when nobody interrupts.
    const std::atomic<bool>* stop = nullptr;

    bool areStopped() const { return stop && stop->load(std::memory_order_relaxed); }
};

/// Calls `work(begin, end)` for ranges that together cover 0 to `count` - 1, on up to as many
/// threads as there are workers, and returns when all are done. Ranges begin at multiples of
/// `grain`. When the workers are stopped, ranges are left out. `work` must not throw.
template <typename Work>
void parallelFor(const Workers& workers,
                 std::uint64_t count,
                 std::uint64_t grain,
                 const Work& work) {
    std::atomic<std::uint64_t> next{0};
    const auto run = [&] {
        for (;;) {
            const std::uint64_t begin = next.fetch_add(grain, std::memory_order_relaxed);
            if (begin >= count || workers.areStopped()) return;
            work(begin, std::min(begin + grain, count));
        }
    };
    std::vector<std::thread> helpers;
    const std::uint64_t useful =
        std::min<std::uint64_t>(workers.threads, (count + grain - 1) / grain);
    try {
        for (std::uint64_t i = 1; i < useful; ++i) {
            helpers.emplace_back(run);
        }
    } catch (const std::exception&) {
        // The threads that there are do all the work.
    }
    run();
    for (std::thread& helper : helpers) {
        helper.join();
    }
}

}  // namespace vatro::egtb
