// base/random.h - the random choices of the engine: moves to play, positions to test.
#pragma once

#include <chrono>
#include <cstdint>

namespace vatro {

/// A source of random numbers for one thread. Equal seeds give equal numbers on every system.
class Random {
  public:
    explicit Random(std::uint64_t seed) : state(seed) {}

    /// Other numbers in every run.
    static Random seededByClock() {
        const auto now = std::chrono::system_clock::now().time_since_epoch();
        return Random(static_cast<std::uint64_t>(now.count()));
    }

    /// 0 to `limit` - 1.
    unsigned below(unsigned limit) { return static_cast<unsigned>(next() % limit); }
    bool oneIn(unsigned n) { return below(n) == 0; }

  private:
    /// SplitMix64: a counter, mixed. Any seed will do, and near ones have nothing in common.
    std::uint64_t next() {
        state += 0x9E3779B97F4A7C15;
        std::uint64_t mixed = state;
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
        return mixed ^ (mixed >> 31);
    }

    std::uint64_t state;
};

}  // namespace vatro
