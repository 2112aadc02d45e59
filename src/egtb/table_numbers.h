// egtb/table_numbers.h - where a table's stream of values has a position.
#pragma once

#include <array>
#include <cstdint>

#include "egtb/position_index.h"
#include "egtb/table_format.h"

namespace vatro::egtb {

class TableNumbers {
  public:
    explicit TableNumbers(const TableHeader& header);

    /// The index, in the stream of values, of a well-formed position of the table's material;
    /// `isSwapped` when the position's White has the men of the table's Black.
    std::uint64_t offsetOf(const Position& position, bool isSwapped) const;

    /// The numbers of the positions with a stored side to move.
    const PositionIndex& index(Colour toMove) const { return indexes[toMove]; }

  private:
    bool storesOneSide;
    std::uint64_t positionsPerSide;
    std::array<PositionIndex, ColourCount> indexes;
};

}  // namespace vatro::egtb
