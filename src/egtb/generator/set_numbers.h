// egtb/generator/set_numbers.h - tables of the numbers of sets of like men.
//
// The numbers are those of PositionIndex: the squares a < b < c of a set have the number
// a + b(b - 1)/2 + c(c - 1)(c - 2)/6, where a pawn's square counts from a2.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "egtb/material.h"

namespace vatro::egtb {

class SetNumbers {
  public:
    /// The tables for pawns or for other men; made at the first call.
    static const SetNumbers& of(bool isPawn);

    /// Number of sets of `count` men.
    std::uint32_t setCount(int count) const {
        return static_cast<std::uint32_t>(squares[count - 1].size());
    }
    /// The squares of a set, ascending; as many as the set has men.
    const std::array<Square64, MaxMen>& squaresOf(int count, std::uint32_t number) const {
        return squares[count - 1][number];
    }

    /// The numbers of the sets of the given men and one more, by its square. 0 where that one
    /// cannot stand.
    const std::uint16_t* single() const { return singles.data(); }
    const std::uint16_t* pairWith(Square64 square) const {
        return &pairs[std::size_t{64} * square];
    }
    const std::uint16_t* tripleWith(Square64 a, Square64 b) const {
        return &triples[std::size_t{64} * pairWith(a)[b]];
    }

  private:
    explicit SetNumbers(bool isPawn);

    std::vector<std::uint16_t> singles;  // by square
    std::vector<std::uint16_t> pairs;    // by two squares
    std::vector<std::uint16_t> triples;  // by the number of a pair and square
    std::array<std::vector<std::array<Square64, MaxMen>>, MaxMen> squares;  // by size, number
};

}  // namespace vatro::egtb
