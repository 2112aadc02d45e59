// eval/king_safety.h - the pawns in front of a king and the open files around it.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "board/board.h"
#include "board/score_sum.h"
#include "board/side.h"
#include "eval/pawn_masks.h"

namespace vatro {

/// The number of gaps in a king's shelter, 0 to 2, by shelterIndex.
extern const std::array<std::uint8_t, 64> kingShelterTable;

// Tuned; no derivation. The open files count once or twice, by the enemy's rooks and queens.
constexpr ScoreSum shelterGap{-15, 7};
constexpr ScoreSum openKingFile{-35, -9};
constexpr ScoreSum openFileBesideKing{-8, -11};
constexpr int MaxHeavyPieces = 2;

/// Bits 0-2: own pawns one rank ahead of the king, on the file to its left (towards a), its own and
/// the one to its right; bits 3-5 the same two ranks ahead. Beyond the edges all counts as covered,
/// and for a king on the last two ranks everything does.
template <Colour Us>
unsigned shelterIndex(SquareMask pawns, Square64 kingSquare) {
    constexpr unsigned leftFile = 0b001001;
    constexpr unsigned rightFile = 0b100100;
    constexpr unsigned twoAhead = 0b111000;
    const int rank = Side<Us>::relativeRank(rankOf(kingSquare));
    if (rank >= 6) return 0b111111;
    const SquareMask ranks = Us == White ? pawns : mirrorRanks(pawns);
    const Square64 king = Us == White ? kingSquare : mirrorRanks(kingSquare);
    // On the edge files a neighbour bit comes from another rank, but it is set below in any case.
    unsigned index = ((ranks >> (king + 7)) & 7) | (((ranks >> (king + 15)) & 7) << 3);
    if (fileOf(king) == 0) index |= leftFile;
    if (fileOf(king) == 7) index |= rightFile;
    if (rank == 5) index |= twoAhead;
    return index;
}

template <Colour Us>
ScoreSum kingSafetyTerms(const Board_0x88& board, unsigned openFiles) {
    if (!board.hasKing(Us)) return {};
    const Square64 king = as64(board.kingSquare(Us));
    const int gaps = kingShelterTable[shelterIndex<Us>(board.pieceMask[Us][Pawn], king)];
    constexpr Colour Them = Side<Us>::Them;
    const int heavy = std::min(MaxHeavyPieces, board.count(Them, Rook) + board.count(Them, Queen));
    const unsigned kingFile = 1U << fileOf(king);
    const int onFile = countSquares(openFiles & kingFile);
    const int besideFile = countSquares(openFiles & filesBeside(kingFile));
    return gaps * shelterGap + heavy * (onFile * openKingFile + besideFile * openFileBesideKing);
}

}  // namespace vatro
