// board/attacks.h - who attacks a square, and which pieces are pinned.
#pragma once

#include "board/board.h"
#include "board/geometry.h"
#include "board/side.h"
#include "board/sliding_attacks.h"

namespace vatro {

/// All pieces of `By` that attack a square when `occupied` are the occupied squares.
template <Colour By>
inline SquareMask attackersOf(const Board_0x88& board, Square64 square, SquareMask occupied) {
    const SquareMask* pieces = board.pieceMask[By];
    SquareMask attackers = (pawnAttacks[Side<By>::Them][square] & pieces[Pawn]) |
                           (knightAttacks[square] & pieces[Knight]) |
                           (kingAttacks[square] & pieces[King]);
    const SquareMask orthogonal = pieces[Rook] | pieces[Queen];
    const SquareMask diagonal = pieces[Bishop] | pieces[Queen];
    // Most squares share no line with a slider, which is cheaper to see than to compute attacks.
    if (rookRays[square] & orthogonal) attackers |= rookAttacks(square, occupied) & orthogonal;
    if (bishopRays[square] & diagonal) attackers |= bishopAttacks(square, occupied) & diagonal;
    return attackers;
}

/// Pins and checks of the side to move; all empty when it has no king.
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
    return attackersOf<Side<Us>::Them>(board, as64(king), board.occupied());
}

/// True when the side to move is in check.
bool inCheck(const Board_0x88& board);

namespace detail {
/// Own pieces that stand alone between the king and an enemy slider of one kind.
inline SquareMask pinnedBy(SquareMask snipers, Square64 king, SquareMask occupied, SquareMask own) {
    SquareMask pinned = 0;
    for (; snipers; snipers &= snipers - 1) {
        const SquareMask between = squaresBetween[king][lowestSquare(snipers)] & occupied;
        if (between && (between & (between - 1)) == 0) pinned |= between & own;
    }
    return pinned;
}
}  // namespace detail

/// The pins of `Us`, which the caller has found to be checked by `checkers`.
template <Colour Us>
inline PinInfo computePins(const Board_0x88& board, SquareMask checkers) {
    PinInfo info;
    info.checkers = checkers;
    const Square king = board.kingSquare(Us);
    if (king == NoSquare) return info;
    const Square64 king64 = as64(king);
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

}  // namespace vatro
