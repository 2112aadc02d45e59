// base/counter.h - a count that one thread writes and others may read at any time.
#pragma once

#include <atomic>
#include <cstdint>

namespace vatro {

/// Costs its writer no more than a plain number: the parts are relaxed, and no add is locked. With
/// two writers counts get lost.
class Counter {
  public:
    Counter() = default;
    Counter(std::uint64_t count) : value(count) {}  // NOLINT(google-explicit-constructor)
    Counter(const Counter& other) : value(other) {}
    Counter& operator=(const Counter& other) {
        value.store(other, std::memory_order_relaxed);
        return *this;
    }
    operator std::uint64_t() const {  // NOLINT(google-explicit-constructor): it is a number
        return value.load(std::memory_order_relaxed);
    }

    Counter& operator++() { return *this += 1; }
    Counter& operator+=(std::uint64_t more) {
        value.store(*this + more, std::memory_order_relaxed);
        return *this;
    }

  private:
    std::atomic<std::uint64_t> value{0};
};

}  // namespace vatro
