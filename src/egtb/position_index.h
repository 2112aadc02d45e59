// egtb/position_index.h - numbers the positions of one ending.
//
// The numbers are part of the file format; docs/tablebase-format.md describes them. Without pawns
// and with both kings on the a1-h8 diagonal, a position and its mirror image have a number each;
// both hold its value.
#pragma once

#include <array>
#include <cstdint>

#include "egtb/material.h"
#include "egtb/position.h"
#include "egtb/symmetry.h"

namespace vatro::egtb {

constexpr int MaxDigits = MaxMen + 1;

/// The digits of a number, the most significant first. A digit is named by its place in the plain
/// order: White's and Black's pawns, the pair of kings, White's and Black's other men by type.
/// Names beyond the last digit are not used.
using DigitOrder = std::array<std::uint8_t, MaxDigits>;
inline constexpr DigitOrder plainOrder = {0, 1, 2, 3};

class PositionIndex {
  public:
    /// `material` is canonical.
    explicit PositionIndex(const Material& material, const DigitOrder& order = plainOrder);

    /// How many numbers there are for one side to move.
    std::uint64_t size() const { return positionCount; }

    /// The number of a well-formed position of this material, colours included. The side to move
    /// is ignored.
    std::uint64_t encode(const Position& position) const;

    /// The numbers of the positions that differ only in the black king's square.
    class KingLine {
      public:
        /// The number with the black king on a square; the position is well-formed.
        std::uint64_t numberWith(Square64 blackKing) const {
            Square64 black = mapSquare(blackKing, symmetry);
            const bool isMirrored = splits && rankOf(black) > fileOf(black);
            if (isMirrored) black = mapSquare(black, SwapAxes);
            return base[isMirrored] + static_cast<std::uint64_t>(pairs[black]) * pairStride;
        }

      private:
        friend class PositionIndex;
        int symmetry;           // that normalises the white king
        bool splits;            // it then stands on the diagonal, and there are no pawns
        std::uint64_t base[2];  // number without the kings, as normalised and mirrored once more
        std::uint64_t pairStride;
        const std::int16_t* pairs;  // of kings, by the black one
    };
    /// Those of a position of this material, colours included.
    KingLine lineOf(const Position& position) const;

    /// The position of a number, White to move. False when two pieces share a square: the number
    /// then stands for no position.
    bool decode(std::uint64_t index, Position& position) const;

    /// A digit: the pair of kings, or the set of squares of men of one colour and type.
    struct Digit {
        bool isKings;
        Colour colour;
        PieceType type;
        int first;             // index of the men in Position::Pieces
        int count;             // of men, 1 to MaxMen
        std::uint32_t size;    // number of values
        std::uint64_t stride;  // what one more adds to the number
    };
    int digitCount() const { return count; }
    /// By name, as in DigitOrder.
    const Digit& digit(int name) const { return digits[name]; }
    /// Digits of pawns; theirs are the lowest names.
    int pawnDigitCount() const { return pawnDigits; }
    /// Name of the least significant digit.
    int lastDigit() const { return last; }
    /// Squares of the white and the black king of a pair.
    const std::array<Square64, 2>& kingPair(std::uint64_t pair) const;

  private:
    void addGroups(bool ofPawns);
    std::uint64_t numberWithoutKings(const Position& position, int symmetry) const;

    Material material;
    bool hasPawns;
    std::array<Digit, MaxDigits> digits{};
    int count = 0;
    int pawnDigits = 0;
    int kingDigit = 0;
    int last = 0;
    std::uint64_t positionCount = 1;
};

}  // namespace vatro::egtb
