// src/egtb/generator/sub_table.h - what captures and promotions into a smaller ending are worth.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "egtb/generator/value_code.h"
#include "egtb/generator/word_layout.h"

namespace vatro::egtb {

using ValueLine = std::array<Value, 64>;  // by the black king's square

/// The values of moves into one ending, with given colours and one side to move after the move.
class SubTable {
  public:
    /// Colours as in `material`, which need not be canonical.
    SubTable(const Material& material, Colour toMove);

    /// Reads the ending's table. False on failure, with a line for the user in `error`. Throws
    /// std::bad_alloc.
    bool load(const std::string& directory, int threads, std::string& error);

    const Material& material() const { return ending; }
    Colour toMove() const { return mover; }
    int longestMate() const { return maxPlies; }  // plies
    std::uint64_t bytes() const { return layout.wordCount() * sizeof(ValueLine); }

    /// The values of moves into the positions with these squares, the men in the order of
    /// orderedMen. NoMove where the position is not legal.
    void fetch(int whiteKing, const int* at, ValueLine& line) const;
    /// The same for one square of the black king.
    Value fetch(int whiteKing, const int* at, int blackKing) const;

  private:
    std::uint64_t wordOf(int whiteKing, const int* at, int& symmetry) const;

    Material ending;
    Colour mover;
    WordLayout layout;
    std::vector<ValueLine> lines;  // by word
    int maxPlies = 0;
};

}  // namespace vatro::egtb
