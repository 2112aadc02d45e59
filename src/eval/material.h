// eval/material.h - piece counts, game phase, material values, and who can still win.
//
// Built afresh at the start of every evaluation; the first thing the lazy cut needs, so it is
// inlined there.
#pragma once

#include <algorithm>
#include <cstdint>

#include "board/board.h"
#include "board/types.h"
#include "eval/score_sum.h"

namespace vatro {

struct MaterialInfo {
    /// Counts by colour, four bits each from the lowest: pawns, knights, bishops, rooks, queens,
    /// minor pieces, rooks and queens, all pieces with the king minus 1.
    std::uint32_t signature[ColourCount];
    int phase;           // 0 to FullPhase
    ScorePair material;  // White's minus Black's
    bool canWin[ColourCount];

    bool hasPawns() const { return ((signature[White] | signature[Black]) & 15) != 0; }
    /// Rooks and queens of a colour.
    int heavyPieces(Colour colour) const { return (signature[colour] >> 24) & 15; }
};

constexpr std::uint32_t materialSignature(unsigned pawns,
                                          unsigned knights,
                                          unsigned bishops,
                                          unsigned rooks,
                                          unsigned queens,
                                          unsigned total) {
    return pawns | (knights << 4) | (bishops << 8) | (rooks << 12) | (queens << 16) |
           ((knights + bishops) << 20) | ((rooks + queens) << 24) | ((total - 1) << 28);
}

// Tuned; no derivation.
constexpr ScoreSum pawnValue{127, 100};
constexpr ScoreSum knightValue{424, 376};
constexpr ScoreSum bishopValue{402, 403};
constexpr ScoreSum rookValue{621, 594};
constexpr ScoreSum queenValue{1220, 1223};
constexpr ScoreSum bishopPairBonus{42, 69};     // more than one bishop, on whatever squares
constexpr ScoreSum knightPerExtraPawn{7, 6};    // for each own pawn above five; below five the
constexpr ScoreSum rookPerExtraPawn{-15, -12};  // signs turn
constexpr int UsualPawns = 5;

inline MaterialInfo computeMaterial(const Board_0x88& board) {
    MaterialInfo info;
    ScoreSum values[ColourCount];
    int phase = 0;
    for (const Colour colour : {White, Black}) {
        const std::uint8_t* counts = board.pieceLists[colour].counts;
        const int pawns = counts[Pawn];
        const int knights = counts[Knight];
        const int bishops = counts[Bishop];
        const int rooks = counts[Rook];
        const int queens = counts[Queen];
        info.signature[colour] =
            materialSignature(pawns, knights, bishops, rooks, queens, counts[PieceList::Total]);
        phase += knights + bishops + 2 * rooks + 4 * queens;
        values[colour] =
            pawns * pawnValue + knights * knightValue + bishops * bishopValue + rooks * rookValue +
            queens * queenValue + static_cast<int>(bishops > 1) * bishopPairBonus +
            (pawns - UsualPawns) * (knights * knightPerExtraPawn + rooks * rookPerExtraPawn);
        // Three minor pieces, or two of which one is a bishop.
        const bool minorsCanWin = knights + bishops + static_cast<int>(bishops > 0) >= 3;
        info.canWin[colour] = (pawns | rooks | queens) != 0 || minorsCanWin;
    }
    info.phase = std::min(FullPhase, phase);
    info.material = (values[White] - values[Black]).pair();
    return info;
}

}  // namespace vatro
