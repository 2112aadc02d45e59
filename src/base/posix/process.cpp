// base/posix/process.cpp - arguments, signals and limits by the calls of POSIX.
#include "base/process.h"

#include <algorithm>
#include <csignal>
#include <limits>
#include <sys/resource.h>
#include <thread>

#if defined(__linux__)
#include <sched.h>
#endif
#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace vatro {
namespace {

std::atomic<bool> isInterrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free);  // a signal handler sets it

void interrupt(int) { isInterrupted = true; }

}  // namespace

std::vector<std::string> programArguments(int argc, char* argv[]) {
    if (argc < 1) return {};
    return {argv + 1, argv + argc};
}

const std::atomic<bool>& watchForInterrupt() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        if (std::signal(signal, interrupt) == SIG_IGN) std::signal(signal, SIG_IGN);
    }
    std::signal(SIGXFSZ, SIG_IGN);
    return isInterrupted;
}

std::uint64_t memoryLimit() {
    rlimit limit{};
    if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) {
        return std::numeric_limits<std::uint64_t>::max();
    }
    return limit.rlim_cur;
}

void useOneHeap() {
#if defined(__GLIBC__)
    mallopt(M_ARENA_MAX, 1);
#endif
}

int allowedProcessors() {
    int count = static_cast<int>(std::thread::hardware_concurrency());
#if defined(__linux__)
    cpu_set_t set;
    CPU_ZERO(&set);
    if (sched_getaffinity(0, sizeof(set), &set) == 0) count = CPU_COUNT(&set);
#endif
    return std::max(1, count);
}

}  // namespace vatro
