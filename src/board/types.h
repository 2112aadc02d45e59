// board/types.h - squares, colours, pieces and scores: the vocabulary of all layers.
//
// Squares are numbered in two ways, and each way has its type: a `Square` is an 0x88 index, for the
// mailbox and for stepping; a `Square64` indexes tables and masks and is what move words hold. Both
// convert to int, but neither converts into the other; as64 and as88 do that.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace vatro {

/// A square of the 0x88 board: rank * 16 + file. A step may lead off the board; isOnBoard tells.
// clang-format off
enum Square : std::uint8_t {
    A1 = 0x00, B1, C1, D1, E1, F1, G1, H1,
    A2 = 0x10, B2, C2, D2, E2, F2, G2, H2,
    A3 = 0x20, B3, C3, D3, E3, F3, G3, H3,
    A4 = 0x30, B4, C4, D4, E4, F4, G4, H4,
    A5 = 0x40, B5, C5, D5, E5, F5, G5, H5,
    A6 = 0x50, B6, C6, D6, E6, F6, G6, H6,
    A7 = 0x60, B7, C7, D7, E7, F7, G7, H7,
    A8 = 0x70, B8, C8, D8, E8, F8, G8, H8,
    NoSquare = 255,
};
// clang-format on

/// The same square as a number from 0 (a1) to 63 (h8): rank * 8 + file. An int underneath, since a
/// byte has to be extended before each use as an index (2% more instructions in a search).
enum Square64 : int { NoSquare64 = 64 };

/// A set of squares: bit n stands for Square64 n.
using SquareMask = std::uint64_t;
/// Zobrist key.
using Key = std::uint64_t;

enum Colour : std::uint8_t { White, Black, NoColour };
enum PieceType : std::uint8_t { NoPiece, Pawn, Knight, Bishop, Rook, Queen, King };

constexpr int ColourCount = 2;
constexpr int PieceTypeCount = 7;  // with NoPiece
constexpr int PieceKindCount = 6;  // without it; tables by kind are indexed by kindOf

/// The index of a piece in tables by kind. An address width wide, so that the subtraction becomes a
/// part of the table's address.
constexpr std::size_t kindOf(PieceType type) { return std::size_t{type} - 1; }

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

constexpr Square operator+(Square square, int step) {
    return static_cast<Square>(int{square} + step);
}
constexpr Square operator-(Square square, int step) { return square + -step; }
constexpr Square& operator+=(Square& square, int step) { return square = square + step; }
constexpr int operator-(Square a, Square b) { return int{a} - int{b}; }

/// Only for steps that stay on the board: one too many shows nowhere.
constexpr Square64 operator+(Square64 square, int step) {
    return static_cast<Square64>(int{square} + step);
}
constexpr Square64 operator-(Square64 square, int step) { return square + -step; }
constexpr int operator-(Square64 a, Square64 b) { return int{a} - int{b}; }

constexpr bool isOnBoard(Square square) { return (square & 0x88) == 0; }

// File and rank, both 0 to 7.
constexpr int fileOf(Square square) { return square & 7; }
constexpr int rankOf(Square square) { return square >> 4; }
constexpr int fileOf(Square64 square) { return square & 7; }
constexpr int rankOf(Square64 square) { return square >> 3; }
constexpr Square squareAt(int file, int rank) { return static_cast<Square>(rank * 16 + file); }
constexpr Square64 square64At(int file, int rank) { return static_cast<Square64>(rank * 8 + file); }

constexpr Square64 as64(Square square) {
    return static_cast<Square64>((square + (square & 7)) >> 1);
}
constexpr Square as88(Square64 square) { return static_cast<Square>(square + (square & 0x38)); }

/// The mask with its ranks in reverse order.
constexpr SquareMask mirrorRanks(SquareMask mask) {
#if defined(__GNUC__)
    return __builtin_bswap64(mask);
#else
    mask = ((mask >> 8) & 0x00FF00FF00FF00FFULL) | ((mask & 0x00FF00FF00FF00FFULL) << 8);
    mask = ((mask >> 16) & 0x0000FFFF0000FFFFULL) | ((mask & 0x0000FFFF0000FFFFULL) << 16);
    return (mask >> 32) | (mask << 32);
#endif
}
/// The square of the same file on the rank opposite: a1 and a8 change places.
constexpr Square64 mirrorRanks(Square64 square) { return static_cast<Square64>(square ^ 56); }
/// The square of the same rank on the file opposite: a1 and h1 change places.
constexpr Square64 mirrorFiles(Square64 square) { return static_cast<Square64>(square ^ 7); }

/// a1 to h8, rank by rank.
inline constexpr std::array<Square64, 64> allSquares = [] {
    std::array<Square64, 64> squares{};
    for (std::size_t i = 0; i < squares.size(); ++i) {
        squares[i] = static_cast<Square64>(i);
    }
    return squares;
}();

/// The mask of one square.
constexpr SquareMask maskOf(Square64 square) { return SquareMask{1} << square; }
constexpr SquareMask maskOf(Square square) { return maskOf(as64(square)); }
constexpr bool contains(SquareMask mask, Square64 square) { return (mask >> square) & 1; }
/// The lowest square of a mask that is not empty.
constexpr Square64 lowestSquare(SquareMask mask) {
    return static_cast<Square64>(std::countr_zero(mask));
}
/// The highest square of a mask that is not empty.
constexpr Square64 highestSquare(SquareMask mask) {
    return static_cast<Square64>(63 - std::countl_zero(mask));
}
constexpr int countSquares(SquareMask mask) { return std::popcount(mask); }

}  // namespace vatro
