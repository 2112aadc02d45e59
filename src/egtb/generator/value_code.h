// egtb/generator/value_code.h - values as the generator keeps them: a better one is greater.
//
// The best of several moves is then the maximum of bytes. The least value stands for no move at
// all; it equals that of a side that is mated, which has none.
#pragma once

#include <cassert>
#include <cstdint>

#include "egtb/table_format.h"

namespace vatro::egtb {

/// 0 to 127: lost in twice as many plies. 128: drawn. 129 to 255: won in 2 * (256 - value) - 1.
using Value = std::uint8_t;

constexpr Value NoMoveValue = 0;
constexpr Value DrawValue = 128;

constexpr Value lossIn(int plies) { return static_cast<Value>(plies / 2); }
constexpr Value winIn(int plies) { return static_cast<Value>(256 - (plies + 1) / 2); }
constexpr int pliesOfValue(Value value) {
    return value < DrawValue ? 2 * value : 2 * (256 - value) - 1;
}

constexpr std::uint8_t codeOfValue(Value value) {
    return value == DrawValue ? DrawCode : codeOfPlies(pliesOfValue(value));
}

/// The value of a move, for the side that makes it, into a position of the given code.
constexpr Value valueOfMoveTo(std::uint8_t code) {
    if (code == DrawCode) return DrawValue;
    const int plies = pliesOfCode(code) + 1;
    return isWinCode(code) ? lossIn(plies) : winIn(plies);
}

static_assert(pliesOfValue(winIn(1)) == 1 && pliesOfValue(winIn(253)) == 253);
static_assert(pliesOfValue(lossIn(0)) == 0 && pliesOfValue(lossIn(254)) == 254);
static_assert(winIn(1) > winIn(3) && winIn(253) > DrawValue && lossIn(254) < DrawValue);
static_assert(NoMoveValue == 0 && valueOfMoveTo(codeOfPlies(1)) == lossIn(2) &&
              valueOfMoveTo(codeOfPlies(0)) == winIn(1));

}  // namespace vatro::egtb
