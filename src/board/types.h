// src/board/types.h - squares, colours, pieces and scores: the words every floor speaks.
//
// There are two numberings of the squares: a `Square` is an 0x88 index (rank * 16 + file), used by
// the mailbox and for stepping; a `sq64` (rank * 8 + file) indexes tables, masks and move words.
#pragma once

#include <bit>
#include <cstdint>

namespace vatro {

/// 0x88 index, rank * 16 + file; a1 = 0, h8 = 119. On the board when no bit of 0x88 is set.
using Square = std::uint8_t;
/// A set of squares: bit n stands for the square whose sq64 is n.
using SquareMask = std::uint64_t;
/// Zobrist key.
using Key = std::uint64_t;

constexpr Square NoSquare = 255;

enum Colour : std::uint8_t { White, Black, NoColour };
enum PieceType : std::uint8_t { NoPiece, Pawn, Knight, Bishop, Rook, Queen, King };

constexpr int ColourCount = 2;
constexpr int PieceTypeCount = 7;  // with NoPiece

/// Indexed by PieceType; an empty square shows as a dot.
constexpr char pieceLetters[] = ".pnbrqk";

enum CastlingRight : std::uint8_t {
    WhiteKingSide = 1,
    WhiteQueenSide = 2,
    BlackKingSide = 4,
    BlackQueenSide = 8,
};

/// A middle-game and an end-game value in centipawns. Arithmetic wraps at 16 bits.
struct ScorePair {
    std::int16_t mg = 0;
    std::int16_t eg = 0;

    constexpr ScorePair() = default;
    constexpr ScorePair(int middleGame, int endGame)
        : mg(static_cast<std::int16_t>(middleGame)), eg(static_cast<std::int16_t>(endGame)) {}

    constexpr ScorePair& operator+=(ScorePair other) { return *this = *this + other; }
    constexpr ScorePair& operator-=(ScorePair other) { return *this = *this - other; }
    friend constexpr ScorePair operator+(ScorePair a, ScorePair b) {
        return {a.mg + b.mg, a.eg + b.eg};
    }
    friend constexpr ScorePair operator-(ScorePair a, ScorePair b) {
        return {a.mg - b.mg, a.eg - b.eg};
    }
    friend constexpr ScorePair operator*(int n, ScorePair a) { return {n * a.mg, n * a.eg}; }
    friend constexpr bool operator==(ScorePair a, ScorePair b) = default;
};
static_assert(sizeof(ScorePair) == 4);

constexpr Colour operator~(Colour c) { return c == White ? Black : White; }

constexpr bool isOnBoard(int square) { return (square & 0x88) == 0; }
constexpr int fileOf(int square) { return square & 7; }
constexpr int rankOf(int square) { return square >> 4; }
constexpr int toSq64(int square) { return (square & 7) | ((square >> 4) << 3); }
constexpr Square toSquare(int sq64) {
    return static_cast<Square>((sq64 & 7) | ((sq64 & 0x38) << 1));
}
constexpr int fileOf64(int sq64) { return sq64 & 7; }
constexpr int rankOf64(int sq64) { return sq64 >> 3; }

/// The mask of one square, given by its sq64.
constexpr SquareMask maskOf(int sq64) { return SquareMask{1} << sq64; }
/// sq64 of the lowest square of a mask that is not empty.
constexpr int lowestSquare(SquareMask mask) { return std::countr_zero(mask); }
/// sq64 of the highest square of a mask that is not empty.
constexpr int highestSquare(SquareMask mask) { return 63 - std::countl_zero(mask); }
constexpr int countSquares(SquareMask mask) { return std::popcount(mask); }

// Squares that rules of chess name.
// clang-format off
constexpr Square A1 = 0x00, B1 = 0x01, C1 = 0x02, D1 = 0x03, E1 = 0x04, F1 = 0x05, G1 = 0x06, H1 = 0x07;
constexpr Square A8 = 0x70, B8 = 0x71, C8 = 0x72, D8 = 0x73, E8 = 0x74, F8 = 0x75, G8 = 0x76, H8 = 0x77;
// clang-format on

}  // namespace vatro
