// egtb/symmetry.h - the board symmetries that the tables use to store a position once.
//
// A symmetry is applied in this order: mirror the files, mirror the ranks, swap file and rank. It
// is undone in the opposite order, as in `unmapSquares`.
#pragma once

#include "board/geometry.h"
#include "board/types.h"

namespace vatro::egtb {

// Bits of a symmetry, 0 to 7.
constexpr int MirrorFiles = 1;  // a-file to h-file
constexpr int MirrorRanks = 2;  // first rank to eighth; never with pawns
constexpr int SwapAxes = 4;     // about the a1-h8 diagonal; never with pawns

/// Where a symmetry takes a square.
constexpr Square64 mapSquare(Square64 square, int symmetry) {
    if (symmetry & MirrorFiles) square = mirrorFiles(square);
    if (symmetry & MirrorRanks) square = mirrorRanks(square);
    if (symmetry & SwapAxes) square = square64At(rankOf(square), fileOf(square));
    return square;
}

/// The symmetry that takes a king to the files a-d and, without pawns, to the triangle a1-d1-d4.
constexpr int normalisingSymmetry(Square64 king, bool hasPawns) {
    int symmetry = 0;
    if (fileOf(king) > 3) {
        symmetry |= MirrorFiles;
        king = mirrorFiles(king);
    }
    if (hasPawns) return symmetry;
    if (rankOf(king) > 3) {
        symmetry |= MirrorRanks;
        king = mirrorRanks(king);
    }
    if (rankOf(king) > fileOf(king)) symmetry |= SwapAxes;
    return symmetry;
}

/// The mask with the bits of each rank in reverse order.
constexpr SquareMask mirrorFiles(SquareMask mask) {
    mask = ((mask >> 1) & 0x5555555555555555ULL) | ((mask & 0x5555555555555555ULL) << 1);
    mask = ((mask >> 2) & 0x3333333333333333ULL) | ((mask & 0x3333333333333333ULL) << 2);
    return ((mask >> 4) & 0x0F0F0F0F0F0F0F0FULL) | ((mask & 0x0F0F0F0F0F0F0F0FULL) << 4);
}

/// The mask mirrored about the a1-h8 diagonal.
constexpr SquareMask swapAxes(SquareMask mask) {
    // Swap the off-diagonal blocks of 4x4 squares, then of 2x2, then of single squares.
    SquareMask t = 0x0F0F0F0F00000000ULL & (mask ^ (mask << 28));
    mask ^= t ^ (t >> 28);
    t = 0x3333000033330000ULL & (mask ^ (mask << 14));
    mask ^= t ^ (t >> 14);
    t = 0x5500550055005500ULL & (mask ^ (mask << 7));
    return mask ^ t ^ (t >> 7);
}

/// The squares that the symmetry maps to those of `mask`.
constexpr SquareMask unmapSquares(SquareMask mask, int symmetry) {
    if (symmetry & SwapAxes) mask = swapAxes(mask);
    if (symmetry & MirrorRanks) mask = mirrorRanks(mask);
    if (symmetry & MirrorFiles) mask = mirrorFiles(mask);
    return mask;
}

}  // namespace vatro::egtb
