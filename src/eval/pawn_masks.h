// eval/pawn_masks.h - what lies ahead of pawns, and on which files they stand.
//
// "Ahead" is towards the promotion rank of the colour.
#pragma once

#include "board/geometry.h"
#include "board/types.h"

namespace vatro {

template <Colour Us>
constexpr SquareMask oneAhead(SquareMask mask) {
    return Us == White ? mask << 8 : mask >> 8;
}

/// The squares of the mask and all squares ahead of them.
template <Colour Us>
constexpr SquareMask fillAhead(SquareMask mask) {
    mask |= Us == White ? mask << 8 : mask >> 8;
    mask |= Us == White ? mask << 16 : mask >> 16;
    mask |= Us == White ? mask << 32 : mask >> 32;
    return mask;
}

/// The squares ahead of a square on its own file.
template <Colour Us>
constexpr SquareMask frontSpan(Square64 square) {
    return Us == White ? (FileA << 8) << square : (FileH >> 8) >> (63 - square);
}

/// The squares one file to the left and right of those of the mask.
constexpr SquareMask beside(SquareMask mask) {
    return ((mask & ~FileH) << 1) | ((mask & ~FileA) >> 1);
}

/// A set of files: bit f for file f, 0 = a. The files on which squares of the mask stand.
constexpr unsigned filesOf(SquareMask mask) {
    mask |= mask >> 32;
    mask |= mask >> 16;
    mask |= mask >> 8;
    return static_cast<unsigned>(mask & 0xFF);
}
/// The neighbours of a set of files.
constexpr unsigned filesBeside(unsigned files) { return ((files << 1) | (files >> 1)) & 0xFF; }
constexpr SquareMask squaresOnFiles(unsigned files) { return FileA * files; }

}  // namespace vatro
