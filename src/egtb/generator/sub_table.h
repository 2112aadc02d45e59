// egtb/generator/sub_table.h - the values of captures and promotions that lead to one ending.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "egtb/generator/parallel.h"
#include "egtb/generator/status.h"
#include "egtb/generator/value_line.h"
#include "egtb/generator/word_pieces.h"
#include "egtb/large_array.h"

namespace vatro::egtb {

/// The values, for the side that moved, of moves from a parent ending into one with one side to
/// move. A man that has just promoted stands on its last rank, so after promotions only those
/// positions are held.
class SubTable {
  public:
    /// Colours as in `material`, which need not be canonical. `promoted` is the man that a pawn has
    /// become.
    SubTable(const Material& material,
             Colour toMove,
             bool parentHasPawns,
             const std::optional<Man>& promoted);

    /// Reads the ending's table. Throws std::bad_alloc.
    Status load(const std::string& directory, const Workers& workers);

    const Material& material() const { return ending; }
    Colour toMove() const { return mover; }
    /// In the order in which `fetch` takes their squares.
    const std::vector<Man>& men() const { return manList; }
    /// Index of the man that has promoted, -1 for none.
    int promotedMan() const { return promotedIndex; }
    int longestMate() const { return maxPlies; }  // plies
    std::uint64_t bytes() const { return wordCount * sizeof(ValueLine); }
    /// Bytes in use while the table is read, besides `bytes`.
    std::uint64_t bytesToLoad() const;

    /// The values of moves into the positions with these squares, in a line that the parent's
    /// symmetries may have turned: `symmetry` maps a black king to its place in it. NoMoveValue
    /// where the position is illegal.
    const ValueLine& lineOf(Square64 whiteKing, const ManSquares& at, int& symmetry) const;

  private:
    struct Place {
        Square64 firstSquare;
        int squareCount;
        std::uint64_t stride;
    };
    WordPieces pieces(std::uint64_t word) const;

    Material ending;
    Colour mover;
    bool keepsPawnSymmetry;  // the white king is normalised as in an ending with pawns
    std::vector<Man> manList;
    int promotedIndex = -1;
    std::array<Place, MaxMen> places{};
    std::uint64_t kingStride = 0;
    std::array<std::uint8_t, 64> kingIndex{};
    std::vector<Square64> kingSquares;  // by index
    std::uint64_t wordCount = 0;
    LargeArray<ValueLine> lines;  // by word
    int maxPlies = 0;
};

}  // namespace vatro::egtb
