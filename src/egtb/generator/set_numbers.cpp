// egtb/generator/set_numbers.cpp - filling the tables of set numbers.
#include "egtb/generator/set_numbers.h"

namespace vatro::egtb {
namespace {

constexpr int SquareCount = 64;

}  // namespace

SetNumbers::SetNumbers(bool isPawn)
    : singles(SquareCount), pairs(std::size_t{SquareCount} * SquareCount) {
    const int first = as64(isPawn ? A2 : A1);
    const int last = as64(isPawn ? H7 : H8);
    const auto square = [](int sq64) { return static_cast<Square64>(sq64); };
    // Going through the sets by their highest square, then by the next, gives their numbers.
    for (int a = first; a <= last; ++a) {
        singles[a] = static_cast<std::uint16_t>(squares[0].size());
        squares[0].push_back({square(a)});
    }
    for (int b = first; b <= last; ++b) {
        for (int a = first; a < b; ++a) {
            const auto number = static_cast<std::uint16_t>(squares[1].size());
            pairs[SquareCount * a + b] = pairs[SquareCount * b + a] = number;
            squares[1].push_back({square(a), square(b)});
        }
    }
    triples.resize(SquareCount * squares[1].size());
    for (int c = first; c <= last; ++c) {
        for (int b = first; b < c; ++b) {
            for (int a = first; a < b; ++a) {
                const auto number = static_cast<std::uint16_t>(squares[2].size());
                triples[SquareCount * pairs[SquareCount * a + b] + c] = number;
                triples[SquareCount * pairs[SquareCount * a + c] + b] = number;
                triples[SquareCount * pairs[SquareCount * b + c] + a] = number;
                squares[2].push_back({square(a), square(b), square(c)});
            }
        }
    }
}

const SetNumbers& SetNumbers::of(bool isPawn) {
    static const SetNumbers ofPawns(true);
    static const SetNumbers ofOthers(false);
    return isPawn ? ofPawns : ofOthers;
}

}  // namespace vatro::egtb
