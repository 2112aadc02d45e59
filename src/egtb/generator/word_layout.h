// src/egtb/generator/word_layout.h - how the generator arranges the positions of an ending.
//
// All positions that differ only in the black king's square form one 64-bit word (as sets) or one
// line of 64 bytes (as values). A word is numbered by the white king, in its normal squares, and
// the other men, each with its own place even when two of them are alike. When the white king
// stands on the diagonal, two words mirror each other; both are worked out.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "board/geometry.h"
#include "egtb/material.h"
#include "egtb/position.h"

namespace vatro::egtb {

struct Man {
    PieceType type;
    Colour colour;
    friend bool operator==(const Man&, const Man&) = default;
};

/// The fixed pieces of a word.
struct WordPieces {
    int whiteKing;               // sq64
    std::array<int, MaxMen> at;  // sq64 of each man
    SquareMask occupied;         // all of them, without the black king
    bool isPossible;             // each has its own square
};

class WordLayout {
  public:
    explicit WordLayout(const Material& material);

    /// Pawns first, as they move least; then the white men, then the black ones.
    const std::vector<Man>& men() const { return manList; }
    int menCount() const { return static_cast<int>(manList.size()); }
    bool hasPawns() const { return withPawns; }
    std::uint64_t wordCount() const { return words; }

    /// How far apart two words are in which this man's square differs by one.
    std::uint64_t strideOf(int man) const { return strides[man]; }
    /// Part of the word's number that comes from a man.
    std::uint64_t partOf(int man, int sq64) const {
        return strides[man] * static_cast<std::uint64_t>(sq64 - firstSquare[man]);
    }
    /// Part that comes from the white king, which stands in its normal squares.
    std::uint64_t kingPart(int sq64) const { return kingStride * kingIndex[sq64]; }

    WordPieces pieces(std::uint64_t word) const;

    /// Squares of the black king that make the position legal with `toMove` to move.
    SquareMask legalKings(const WordPieces& pieces, Colour toMove) const;
    /// Squares of the black king with which White's king is attacked by another black man.
    SquareMask whiteInCheck(const WordPieces& pieces) const;
    /// Squares that White attacks: there the black king is in check.
    SquareMask whiteAttacks(const WordPieces& pieces) const;

    /// The position that stands for a black king square of a word, White to move.
    Position position(const WordPieces& pieces, int blackKing) const;

  private:
    std::vector<Man> manList;
    bool withPawns;
    std::array<std::uint64_t, MaxMen> strides{};
    std::array<int, MaxMen> firstSquare{};
    std::array<std::uint32_t, MaxMen> squareCount{};
    std::uint64_t kingStride = 0;
    std::uint64_t words = 0;
    std::array<std::uint8_t, 64> kingIndex{};
    std::vector<std::uint8_t> kingSquares;  // by index
};

/// The men of an ending in the order of WordLayout::men.
std::vector<Man> orderedMen(const Material& material);

}  // namespace vatro::egtb
