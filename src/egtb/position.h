// src/egtb/position.h - a position of a few pieces, as the tables know it.
//
// The pieces of a side stand in descending order of type, so entry 0 is the king and the types
// without it are the side's `MenOfSide`.
#pragma once

#include <cassert>
#include <cstdint>

#include "board/geometry.h"
#include "board/types.h"
#include "egtb/material.h"

namespace vatro::egtb {

constexpr int NoEpSquare = 64;

struct Position {
    struct Pieces {
        std::uint8_t squares[MaxPieces - 1];  // sq64
        PieceType types[MaxPieces - 1];
        int count = 0;

        /// Inserts in order of type. False when there is no room.
        bool add(PieceType type, int sq64);
        void remove(int index);
        int kingSquare() const { return squares[0]; }
    };

    Pieces pieces[ColourCount];
    Colour sideToMove = White;

    SquareMask occupied(Colour colour) const;
    SquareMask occupied() const { return occupied(White) | occupied(Black); }
    Material material() const;
    /// The same position seen from the other side: colours and ranks change places.
    Position withColoursSwapped() const;
};

/// A piece attacks a square, given what stands between them.
inline bool attacks(PieceType type, Colour colour, int from, int to, SquareMask occupied) {
    const SquareMask target = maskOf(to);
    switch (type) {
        case Pawn:
            return pawnAttacks[colour][from] & target;
        case Knight:
            return knightAttacks[from] & target;
        case King:
            return kingAttacks[from] & target;
        case Bishop:
            return (bishopRays[from] & target) && !(squaresBetween[from][to] & occupied);
        case Rook:
            return (rookRays[from] & target) && !(squaresBetween[from][to] & occupied);
        case Queen:
            return ((bishopRays[from] | rookRays[from]) & target) &&
                   !(squaresBetween[from][to] & occupied);
        case NoPiece:
            break;
    }
    return false;
}

/// The king of `colour` stands on a square that the other side attacks.
bool isInCheck(const Position& position, Colour colour);

/// Each piece has its own square, each side one king, no pawn stands on an outer rank.
bool isWellFormed(const Position& position);

/// A well-formed position in which the side to move cannot take the king.
inline bool isLegal(const Position& position) { return !isInCheck(position, ~position.sideToMove); }

/// Calls `visit(child, epSquare)` for the position after each legal move, the other side to move.
/// `epSquare` is NoEpSquare unless the move was a double step past an enemy pawn. En passant is
/// generated when `ep` is a square that a pawn can take on, and then last of all moves.
template <typename Visit>
void forEachChild(const Position& position, int ep, Visit visit);

/// Calls `visit(child)` for each legal en-passant capture.
template <typename Visit>
void forEachEnPassant(const Position& position, int ep, Visit visit);

/// A legal move other than en passant exists.
bool hasOrdinaryMove(const Position& position);

}  // namespace vatro::egtb

#include "egtb/position_moves.h"
