// egtb/position.h - a position of a few pieces, as the tables know it.
//
// The pieces of a side are sorted by descending type: entry 0 is the king, and the other types are
// those of the side's `MenOfSide`.
#pragma once

#include <cassert>
#include <cstdint>

#include "board/geometry.h"
#include "board/types.h"
#include "egtb/material.h"

namespace vatro::egtb {

constexpr Square64 NoEpSquare = NoSquare64;  // no capture en passant

struct Position {
    struct Pieces {
        Square64 squares[MaxPieces - 1];
        PieceType types[MaxPieces - 1];
        int count = 0;

        /// Inserts in order of type. False when there is no room.
        bool add(PieceType type, Square64 square);
        void remove(int index);
        Square64 kingSquare() const { return squares[0]; }
    };

    Pieces pieces[ColourCount];
    Colour sideToMove = White;

    SquareMask occupied(Colour colour) const;
    SquareMask occupied() const { return occupied(White) | occupied(Black); }
    Material material() const;
    /// The same position seen from the other side, with colours and ranks mirrored.
    Position withColoursSwapped() const;
};

/// A piece on `from` attacks `to`, given the occupied squares of the board.
inline bool attacks(
    PieceType type, Colour colour, Square64 from, Square64 to, SquareMask occupied) {
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
/// `epSquare` is NoEpSquare unless the move was a double step past an enemy pawn. `ep` is the
/// square on which a pawn of the position can take en passant, or NoEpSquare.
template <typename Visit>
void forEachChild(const Position& position, Square64 ep, Visit visit);

/// Calls `visit(child)` after each legal en-passant capture.
template <typename Visit>
void forEachEnPassant(const Position& position, Square64 ep, Visit visit);

/// A legal move other than en passant exists.
bool hasOrdinaryMove(const Position& position);

}  // namespace vatro::egtb

#include "egtb/position_moves.h"
