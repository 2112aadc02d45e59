// egtb/generator/word_layout.h - how the generator arranges the positions of an ending.
//
// The positions that differ only in the black king's square form a word: a set of them is 64 bits,
// their values are a line of 64 bytes. The number of a word is made of the square of the white
// king, normalised by symmetry, and of the sets of squares of like men, numbered as in the files.
// Without pawns, words with the white king on the a1-h8 diagonal come in mirrored pairs; both are
// worked out.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "egtb/generator/word_pieces.h"
#include "egtb/material.h"

namespace vatro::egtb {

/// The numbers of the words in which one man stands on each of the squares, the others where they
/// are. No other man may stand on the square that is asked for.
class WordsOfMan {
  public:
    WordsOfMan(std::uint64_t wordWithout, const std::uint16_t* setNumbers, std::uint64_t setStride)
        : base(wordWithout), numbers(setNumbers), stride(setStride) {}

    std::uint64_t operator[](Square64 square) const { return base + numbers[square] * stride; }

  private:
    std::uint64_t base;
    const std::uint16_t* numbers;  // of the set of like men, by the square of this one
    std::uint64_t stride;
};

class SetNumbers;

class WordLayout {
  public:
    explicit WordLayout(const Material& material);

    /// As ordered by orderedMen.
    const std::vector<Man>& men() const { return manList; }
    int menCount() const { return static_cast<int>(manList.size()); }
    bool hasPawns() const { return withPawns; }
    std::uint64_t wordCount() const { return words; }

    WordPieces pieces(std::uint64_t word) const;

    /// The number of a word, given its pieces; the white king stands on a normalised square.
    std::uint64_t wordOf(Square64 whiteKing, const ManSquares& at) const;
    WordsOfMan wordsOfMan(std::uint64_t word, const WordPieces& pieces, int man) const;

    /// What the white king adds to the number of a word, on one of its normalised squares.
    std::uint64_t kingPart(Square64 square) const { return kingStride * kingIndex[square]; }

  private:
    struct Group {
        int first;  // man
        int count;
        std::uint32_t size;  // number of sets
        std::uint64_t stride;
        const SetNumbers* numbers;
    };

    std::vector<Man> manList;
    bool withPawns;
    std::vector<Group> groups;
    std::array<int, MaxMen> groupOf{};  // by man
    std::uint64_t kingStride = 0;
    std::uint64_t words = 0;
    std::array<std::uint8_t, 64> kingIndex{};
    std::vector<Square64> kingSquares;  // by index
};

}  // namespace vatro::egtb
