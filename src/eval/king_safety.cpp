// eval/king_safety.cpp - the gaps in a king's shelter.
#include "eval/king_safety.h"

namespace vatro {
namespace {

/// The file beside the king towards a is covered by a pawn on either rank, the one towards h only
/// by a pawn on the nearer rank. The king's own file does not count. Tuned; no derivation.
constexpr std::array<std::uint8_t, 64> buildShelterTable() {
    std::array<std::uint8_t, 64> table{};
    for (unsigned index = 0; index < table.size(); ++index) {
        const bool leftIsOpen = (index & 0b001001) == 0;
        const bool rightIsOpen = (index & 0b000100) == 0;
        table[index] = static_cast<std::uint8_t>(leftIsOpen + rightIsOpen);
    }
    return table;
}

}  // namespace

constexpr std::array<std::uint8_t, 64> kingShelterTable = buildShelterTable();

}  // namespace vatro
