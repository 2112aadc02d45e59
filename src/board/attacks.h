// src/board/attacks.h - who attacks a square, which pieces are pinned, which moves are legal.
#pragma once

#include "board/board.h"
#include "board/geometry.h"
#include "board/side.h"

namespace vatro {

/// All pieces of `By` that attack a square when `occupied` are the occupied squares.
template <Colour By>
inline SquareMask attackersOf(const Board_0x88& board, int sq64, SquareMask occupied) {
    const SquareMask* pieces = board.pieceMask[By];
    SquareMask attackers = (pawnAttacks[Side<By>::Them][sq64] & pieces[Pawn]) |
                           (knightAttacks[sq64] & pieces[Knight]) |
                           (kingAttacks[sq64] & pieces[King]);
    const SquareMask orthogonal = pieces[Rook] | pieces[Queen];
    const SquareMask diagonal = pieces[Bishop] | pieces[Queen];
    // Most squares are on no line with a slider at all; that is cheaper to see than the attacks.
    if (rookRays[sq64] & orthogonal) attackers |= rookAttacks(sq64, occupied) & orthogonal;
    if (bishopRays[sq64] & diagonal) attackers |= bishopAttacks(sq64, occupied) & diagonal;
    return attackers;
}

/// What generators and legality tests know about the own king. Empty for a side without a king.
struct PinInfo {
    SquareMask pinnedOrthogonal = 0;  // own pieces pinned along a rank or file
    SquareMask pinnedDiagonal = 0;    // own pieces pinned along a diagonal
    SquareMask checkers = 0;          // enemy pieces that give check

    SquareMask pinned() const { return pinnedOrthogonal | pinnedDiagonal; }
    bool inCheck() const { return checkers != 0; }
};

/// True when a piece of `byColour` attacks the square.
bool isAttacked(const Board_0x88& board, Square square, Colour byColour);

/// The enemy pieces that attack the king of `Us`; empty without a king.
template <Colour Us>
inline SquareMask findCheckers(const Board_0x88& board) {
    const Square king = board.kingSquare(Us);
    if (king == NoSquare) return 0;
    return attackersOf<Side<Us>::Them>(board, toSq64(king), board.occupied());
}

/// True when the side to move is in check.
bool inCheck(const Board_0x88& board);

namespace detail {
/// Own pieces that stand alone between the king and an enemy slider of one kind.
inline SquareMask pinnedBy(SquareMask snipers, int king, SquareMask occupied, SquareMask own) {
    SquareMask pinned = 0;
    for (; snipers; snipers &= snipers - 1) {
        const SquareMask between = squaresBetween[king][lowestSquare(snipers)] & occupied;
        if (between && (between & (between - 1)) == 0) pinned |= between & own;
    }
    return pinned;
}
}  // namespace detail

/// The pins of `Us`; the checkers are the caller's.
template <Colour Us>
inline PinInfo computePins(const Board_0x88& board, SquareMask checkers) {
    PinInfo info;
    info.checkers = checkers;
    const Square king = board.kingSquare(Us);
    if (king == NoSquare) return info;
    const int king64 = toSq64(king);
    const SquareMask* theirs = board.pieceMask[Side<Us>::Them];
    const SquareMask own = board.pieceMask[Us][NoPiece];
    const SquareMask occupied = board.occupied();
    info.pinnedOrthogonal =
        detail::pinnedBy(rookRays[king64] & (theirs[Rook] | theirs[Queen]), king64, occupied, own);
    info.pinnedDiagonal = detail::pinnedBy(bishopRays[king64] & (theirs[Bishop] | theirs[Queen]),
                                           king64, occupied, own);
    return info;
}

/// Pins and checkers of the side to move.
PinInfo computePins(const Board_0x88& board);

/// True when `move`, a move that the side to move could make by the way its pieces go, does not
/// leave its king attacked. `info` is that of the position.
bool isLegal(const Board_0x88& board, Move move, const PinInfo& info);

/// True when the generator could produce `move` here, its own king's safety aside: for moves that
/// come from a table or a handed-down line. A move that also passes isLegal can be played.
bool isValidMove(const Board_0x88& board, Move move);

}  // namespace vatro
