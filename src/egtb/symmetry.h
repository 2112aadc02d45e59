// src/egtb/symmetry.h - the board symmetries that the tables use to store a position once.
//
// A symmetry is applied in a fixed order: mirror the files, then the ranks, then swap file and
// rank. Undoing it, as `unmapSquares` does, takes the opposite order.
#pragma once

#include "board/geometry.h"
#include "board/types.h"

namespace vatro::egtb {

// Bits of a symmetry, 0 to 7.
constexpr int MirrorFiles = 1;  // a-file to h-file
constexpr int MirrorRanks = 2;  // first rank to eighth; never with pawns
constexpr int SwapAxes = 4;     // about the a1-h8 diagonal; never with pawns

/// Where a symmetry takes a square.
constexpr int mapSquare(int sq64, int symmetry) {
    if (symmetry & MirrorFiles) sq64 ^= 7;
    if (symmetry & MirrorRanks) sq64 ^= 56;
    if (symmetry & SwapAxes) sq64 = ((sq64 & 7) << 3) | (sq64 >> 3);
    return sq64;
}

/// The symmetry that takes a king to the files a-d and, without pawns, to the triangle a1-d1-d4.
constexpr int normalisingSymmetry(int king, bool hasPawns) {
    int symmetry = 0;
    if (fileOf64(king) > 3) {
        symmetry |= MirrorFiles;
        king ^= 7;
    }
    if (hasPawns) return symmetry;
    if (rankOf64(king) > 3) {
        symmetry |= MirrorRanks;
        king ^= 56;
    }
    if (rankOf64(king) > fileOf64(king)) symmetry |= SwapAxes;
    return symmetry;
}

/// The mask with the bits of each rank in reverse order.
constexpr SquareMask mirrorFiles(SquareMask mask) {
    mask = ((mask >> 1) & 0x5555555555555555ULL) | ((mask & 0x5555555555555555ULL) << 1);
    mask = ((mask >> 2) & 0x3333333333333333ULL) | ((mask & 0x3333333333333333ULL) << 2);
    return ((mask >> 4) & 0x0F0F0F0F0F0F0F0FULL) | ((mask & 0x0F0F0F0F0F0F0F0FULL) << 4);
}

/// The mask mirrored about the a1-h8 diagonal: halves, quarters and pairs change places.
constexpr SquareMask swapAxes(SquareMask mask) {
    SquareMask t = 0x0F0F0F0F00000000ULL & (mask ^ (mask << 28));
    mask ^= t ^ (t >> 28);
    t = 0x3333000033330000ULL & (mask ^ (mask << 14));
    mask ^= t ^ (t >> 14);
    t = 0x5500550055005500ULL & (mask ^ (mask << 7));
    return mask ^ t ^ (t >> 7);
}

/// The squares that the symmetry takes into `mask`.
constexpr SquareMask unmapSquares(SquareMask mask, int symmetry) {
    if (symmetry & SwapAxes) mask = swapAxes(mask);
    if (symmetry & MirrorRanks) mask = mirrorRanks(mask);
    if (symmetry & MirrorFiles) mask = mirrorFiles(mask);
    return mask;
}

}  // namespace vatro::egtb
