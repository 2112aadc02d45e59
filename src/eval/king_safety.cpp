// eval/king_safety.cpp - the gaps in a king's shelter.
#include "eval/king_safety.h"

namespace vatro {
namespace {

/// The file before the king is covered by a pawn on either rank, the file after it only by one
/// directly ahead. The king's own file does not count. Tuned; no derivation.
constexpr std::array<std::uint8_t, 64> buildShelterTable() {
    std::array<std::uint8_t, 64> table{};
    for (unsigned index = 0; index < table.size(); ++index) {
        const bool openBefore = (index & 0b001001) == 0;
        const bool openAfter = (index & 0b000100) == 0;
        table[index] = static_cast<std::uint8_t>(openBefore + openAfter);
    }
    return table;
}

}  // namespace

constexpr std::array<std::uint8_t, 64> kingShelterTable = buildShelterTable();

}  // namespace vatro
