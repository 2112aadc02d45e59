// eval/material.h - piece counts, game phase, material values, and who can still win.
//
// Every evaluation begins with it. As it rarely changes, each thread keeps what it has computed.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "board/board.h"
#include "board/types.h"
#include "eval/taper.h"

namespace vatro {

struct MaterialInfo {
    int phase = 0;       // 0 to FullPhase
    ScorePair material;  // White's minus Black's
    int lead = 0;        // the same, tapered
    bool canWin[ColourCount] = {};
};

// Tuned; no derivation.
constexpr ScoreSum pawnValue{127, 100};
constexpr ScoreSum knightValue{424, 376};
constexpr ScoreSum bishopValue{402, 403};
constexpr ScoreSum rookValue{621, 594};
constexpr ScoreSum queenValue{1220, 1223};
constexpr ScoreSum bishopPairBonus{42, 69};  // more than one bishop, on whatever squares
// For each own pawn above UsualPawns; taken away for each pawn below.
constexpr ScoreSum knightPerExtraPawn{7, 6};
constexpr ScoreSum rookPerExtraPawn{-15, -12};
constexpr int UsualPawns = 5;

/// Whether a colour still has mating material: a pawn, a rook or a queen; three minor pieces, or
/// two of which one is a bishop.
inline bool canMate(const Board_0x88& board, Colour colour) {
    if (board.count(colour, Pawn) + board.count(colour, Rook) + board.count(colour, Queen)) {
        return true;
    }
    const int bishops = board.count(colour, Bishop);
    const int minors = board.count(colour, Knight) + bishops;
    return minors >= 3 || (minors == 2 && bishops >= 1);
}

/// What a colour's pieces are worth together beyond their single values.
inline ScoreSum materialAdjustment(const Board_0x88& board, Colour colour) {
    const ScoreSum perExtraPawn = board.count(colour, Knight) * knightPerExtraPawn +
                                  board.count(colour, Rook) * rookPerExtraPawn;
    const ScoreSum adjustment = (board.count(colour, Pawn) - UsualPawns) * perExtraPawn;
    return board.count(colour, Bishop) > 1 ? adjustment + bishopPairBonus : adjustment;
}

inline MaterialInfo computeMaterial(const Board_0x88& board) {
    const auto both = [&](PieceType type) {
        return board.count(White, type) + board.count(Black, type);
    };
    const auto lead = [&](PieceType type) {
        return board.count(White, type) - board.count(Black, type);
    };
    const int phase = std::min(FullPhase, both(Knight) + both(Bishop) + 2 * both(Rook) +
                                              4 * both(Queen));  // usual weights
    const ScoreSum material = lead(Pawn) * pawnValue + lead(Knight) * knightValue +
                              lead(Bishop) * bishopValue + lead(Rook) * rookValue +
                              lead(Queen) * queenValue + materialAdjustment(board, White) -
                              materialAdjustment(board, Black);
    return {phase,
            material.pair(),
            taper(material, phase),
            {canMate(board, White), canMate(board, Black)}};
}

/// The material that one thread has met, found by the counts of all pieces.
class MaterialTable {
  public:
    /// What computeMaterial says of the board; valid until the next call.
    const MaterialInfo& find(const Board_0x88& board) {
        const std::uint64_t white = board.pieceLists[White].countWord();
        const std::uint64_t black = board.pieceLists[Black].countWord();
        // Factors without a pattern spread the few bits that differ over the high ones.
        const std::uint64_t mixed = white * 0x9E3779B97F4A7C15ULL + black * 0xD6E8FEB86659FD93ULL;
        Entry& entry = entries[mixed >> (64 - IndexBits)];
        if (entry.white != white || entry.black != black) {
            entry = {white, black, computeMaterial(board)};
        }
        return entry.info;
    }

  private:
    static constexpr int IndexBits = 9;
    /// Zeroed, it is correct: its counts are those of an empty board.
    struct Entry {
        std::uint64_t white = 0;  // counts
        std::uint64_t black = 0;
        MaterialInfo info;
    };

    std::array<Entry, 1U << IndexBits> entries{};
};

}  // namespace vatro
