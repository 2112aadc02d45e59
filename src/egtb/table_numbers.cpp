// egtb/table_numbers.cpp - sides, colours and numbers.
#include "egtb/table_numbers.h"

namespace vatro::egtb {

TableNumbers::TableNumbers(const TableHeader& header)
    : storesOneSide(header.sidesStored == 1),
      positionsPerSide(header.positionsPerSide),
      indexes{PositionIndex(header.material, header.order[White]),
              PositionIndex(header.material, header.order[Black])} {}

std::uint64_t TableNumbers::offsetOf(const Position& position, bool isSwapped) const {
    // A table of one side to move answers for the other with the colours swapped.
    if (storesOneSide) isSwapped = position.sideToMove == Black;
    const bool isSecondHalf = (position.sideToMove == Black) != isSwapped;
    return indexes[isSecondHalf].encode(isSwapped ? position.withColoursSwapped() : position) +
           (isSecondHalf ? positionsPerSide : 0);
}

}  // namespace vatro::egtb
