// board/zobrist.cpp - drawing the Zobrist keys, at compile time.
//
// The generator is an additive feedback generator (x[i] = x[i-3] + x[i-31], lowest bit dropped),
// which is what rand() of the common C library on Linux computes; it is written out here so that
// other platforms get the same keys.
#include "board/zobrist.h"

#include <cstdint>

namespace vatro {
namespace {

class KeyGenerator {
  public:
    constexpr explicit KeyGenerator(std::uint32_t seed) {
        std::int64_t word = seed;
        for (int i = 0; i < Lag; ++i) {
            state[i] = static_cast<std::uint32_t>(word);
            word = word * 16807 % 2147483647;  // the minimal standard generator fills the state
        }
        for (int i = 0; i < 10 * Lag; ++i) {  // the first ten rounds are discarded
            next();
        }
    }

    /// A 64-bit key from six calls: 11 bits from each of the first five, 9 from the last.
    constexpr Key random64() {
        Key key = 0;
        for (int shift = 0; shift < 64; shift += 11) {
            key |= static_cast<Key>(next() & 0x7FF) << shift;  // the top two bits fall off the end
        }
        return key;
    }

  private:
    static constexpr int Lag = 31;

    constexpr std::uint32_t next() {
        const int oldest = position;
        state[oldest] += state[(oldest + Lag - 3) % Lag];
        position = (position + 1) % Lag;
        return state[oldest] >> 1;
    }

    std::uint32_t state[Lag]{};
    int position = 3;  // so that the first sum takes the words 3 and 0
};

constexpr ZobristKeys drawKeys() {
    ZobristKeys keys{};
    constexpr std::uint32_t Seed = 327641845;  // arbitrary, but node counts depend on it
    KeyGenerator generator(Seed);
    for (auto& colour : keys.piece) {
        for (auto& type : colour) {
            for (Key& key : type) {
                key = generator.random64();
            }
        }
    }
    for (const int right : {WhiteKingSide, WhiteQueenSide, BlackKingSide, BlackQueenSide}) {
        keys.castling[right] = generator.random64();
    }
    for (Key& key : keys.epFile) {
        key = generator.random64();
    }
    keys.side = generator.random64();
    return keys;
}

}  // namespace

constexpr ZobristKeys zobrist = drawKeys();

}  // namespace vatro
