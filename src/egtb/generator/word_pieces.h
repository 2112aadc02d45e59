// egtb/generator/word_pieces.h - the pieces that the positions of a word share.
//
// A word is the positions that differ only in the black king's square: a set of them is 64 bits,
// their values are a line of 64 bytes.
#pragma once

#include <array>
#include <vector>

#include "board/geometry.h"
#include "egtb/material.h"
#include "egtb/position.h"

namespace vatro::egtb {

struct Man {
    PieceType type;
    Colour colour;
    friend bool operator==(const Man&, const Man&) = default;
};

using ManSquares = std::array<Square64, MaxMen>;  // by man

struct WordPieces {
    Square64 whiteKing;
    ManSquares at;
    SquareMask occupied;  // all of them, without the black king
    bool isPossible;      // no two share a square
};

/// The men of an ending in the order in which the generator keeps them: pawns first, as they move
/// least; then the white men, then the black ones. Like men are next to each other.
std::vector<Man> orderedMen(const Material& material);

/// Squares of the black king that make the position legal with `toMove` to move.
SquareMask legalKings(const std::vector<Man>& men, const WordPieces& pieces, Colour toMove);
/// Squares of the black king for which another black man gives check to White's king.
SquareMask whiteInCheck(const std::vector<Man>& men, const WordPieces& pieces);
/// Squares that White attacks, where the black king is in check.
SquareMask whiteAttacks(const std::vector<Man>& men, const WordPieces& pieces);

/// The position with the black king on a square, White to move.
Position positionOf(const std::vector<Man>& men, const WordPieces& pieces, Square64 blackKing);

}  // namespace vatro::egtb
