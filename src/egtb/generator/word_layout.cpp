// egtb/generator/word_layout.cpp - numbering words.
#include "egtb/generator/word_layout.h"

#include "egtb/generator/set_numbers.h"
#include "egtb/symmetry.h"

namespace vatro::egtb {

WordLayout::WordLayout(const Material& material)
    : manList(orderedMen(material)), withPawns(material.hasPawns()) {
    for (int man = 0; man < menCount(); ++man) {
        if (groups.empty() || manList[man] != manList[groups.back().first]) {
            groups.push_back({man, 0, 0, 0, &SetNumbers::of(manList[man].type == Pawn)});
        }
        ++groups.back().count;
        groupOf[man] = static_cast<int>(groups.size()) - 1;
    }
    std::uint64_t stride = 1;
    for (auto group = groups.rbegin(); group != groups.rend(); ++group) {
        group->stride = stride;
        group->size = group->numbers->setCount(group->count);
        stride *= group->size;
    }
    kingStride = stride;
    for (const Square64 square : allSquares) {
        if (normalisingSymmetry(square, withPawns) != 0) continue;
        kingIndex[square] = static_cast<std::uint8_t>(kingSquares.size());
        kingSquares.push_back(square);
    }
    words = kingStride * kingSquares.size();
}

WordPieces WordLayout::pieces(std::uint64_t word) const {
    WordPieces result{};
    auto rest = static_cast<std::uint32_t>(word % kingStride);
    result.whiteKing = kingSquares[word / kingStride];
    result.occupied = maskOf(result.whiteKing);
    for (auto group = groups.rbegin(); group != groups.rend(); ++group) {
        const auto& squares = group->numbers->squaresOf(group->count, rest % group->size);
        rest /= group->size;
        for (int i = 0; i < group->count; ++i) {
            result.at[group->first + i] = squares[i];
            result.occupied |= maskOf(squares[i]);
        }
    }
    result.isPossible = countSquares(result.occupied) == menCount() + 1;
    return result;
}

std::uint64_t WordLayout::wordOf(Square64 whiteKing, const ManSquares& at) const {
    std::uint64_t word = kingPart(whiteKing);
    for (const Group& group : groups) {
        const Square64* squares = &at[group.first];
        const std::uint16_t* numbers = group.count == 1 ? group.numbers->single()
                                       : group.count == 2
                                           ? group.numbers->pairWith(squares[1])
                                           : group.numbers->tripleWith(squares[1], squares[2]);
        word += numbers[squares[0]] * group.stride;
    }
    return word;
}

WordsOfMan WordLayout::wordsOfMan(std::uint64_t word, const WordPieces& pieces, int man) const {
    const Group& group = groups[groupOf[man]];
    const std::uint16_t* numbers = group.numbers->single();
    if (group.count > 1) {
        // The other men of the group: the next ones, going round.
        const auto other = [&](int step) {
            return pieces.at[group.first + (man - group.first + step) % group.count];
        };
        numbers = group.count == 2 ? group.numbers->pairWith(other(1))
                                   : group.numbers->tripleWith(other(1), other(2));
    }
    return {word - numbers[pieces.at[man]] * group.stride, numbers, group.stride};
}

}  // namespace vatro::egtb
