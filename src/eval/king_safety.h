// eval/king_safety.h - the pawns in front of a king and the open files around it.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "board/board.h"
#include "board/side.h"
#include "board/sliding_attacks.h"
#include "eval/pawn_masks.h"
#include "eval/score_sum.h"

namespace vatro {

/// The number of gaps in a king's shelter, 0 to 2, by shelterIndex.
extern const std::array<std::uint8_t, 64> kingShelterTable;

// Tuned; no derivation. The open files count once or twice, by the enemy's rooks and queens.
constexpr ScoreSum shelterGap{-15, 7};
constexpr ScoreSum openKingFile{-35, -9};
constexpr ScoreSum openFileBesideKing{-8, -11};
constexpr int MaxHeavyPieces = 2;

/// Bits 0-2: own pawns one rank ahead of the king, on the file before, on and after its own; bits
/// 3-5 two ranks ahead. A missing file or rank counts as covered; all are for a king on its last
/// two ranks.
template <Colour Us>
unsigned shelterIndex(SquareMask pawns, int kingSq64) {
    constexpr unsigned beforeKing = 0b001001;
    constexpr unsigned afterKing = 0b100100;
    constexpr unsigned twoAhead = 0b111000;
    const int rank = Side<Us>::relativeRank(rankOf64(kingSq64));
    if (rank >= 6) return 63;
    const SquareMask ranks = Us == White ? pawns : mirrorRanks(pawns);
    const int king = Us == White ? kingSq64 : kingSq64 ^ 56;
    // On the edge files a neighbour bit comes from another rank; it is set below anyhow.
    unsigned index = ((ranks >> (king + 7)) & 7) | (((ranks >> (king + 15)) & 7) << 3);
    if (fileOf64(king) == 0) index |= beforeKing;
    if (fileOf64(king) == 7) index |= afterKing;
    if (rank == 5) index |= twoAhead;
    return index;
}

template <Colour Us>
ScoreSum kingSafetyTerms(const Board_0x88& board, unsigned openFiles) {
    if (!board.hasKing(Us)) return {};
    const int king = toSq64(board.kingSquare(Us));
    const int gaps = kingShelterTable[shelterIndex<Us>(board.pieceMask[Us][Pawn], king)];
    constexpr Colour Them = Side<Us>::Them;
    const int heavy = std::min(MaxHeavyPieces, board.count(Them, Rook) + board.count(Them, Queen));
    const unsigned kingFile = 1U << fileOf64(king);
    const int onFile = countSquares(openFiles & kingFile);
    const int besideFile = countSquares(openFiles & filesBeside(kingFile));
    return gaps * shelterGap + heavy * (onFile * openKingFile + besideFile * openFileBesideKing);
}

}  // namespace vatro
