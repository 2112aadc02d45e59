// egtb/position_moves.h - the moves of a position of a few pieces.
//
// For probes with an en-passant square and for the verification of tables. Included by position.h.
#pragma once

#include "board/sliding_attacks.h"
#include "egtb/position.h"

namespace vatro::egtb {

/// Squares that a piece other than a pawn attacks.
inline SquareMask pieceAttacks(PieceType type, Square64 from, SquareMask occupied) {
    switch (type) {
        case Knight:
            return knightAttacks[from];
        case Bishop:
            return bishopAttacks(from, occupied);
        case Rook:
            return rookAttacks(from, occupied);
        case Queen:
            return bishopAttacks(from, occupied) | rookAttacks(from, occupied);
        case King:
            return kingAttacks[from];
        default:
            return 0;
    }
}

/// Squares to which a pawn can move: one or two empty squares ahead, or an enemy to capture.
inline SquareMask pawnTargets(Colour us, Square64 from, SquareMask occupied, SquareMask enemies) {
    const int up = us == White ? 8 : -8;
    SquareMask targets = pawnAttacks[us][from] & enemies;
    if (occupied & maskOf(from + up)) return targets;
    targets |= maskOf(from + up);
    const bool onDoubleStepRank = rankOf(from) == (us == White ? 1 : 6);
    if (onDoubleStepRank && !(occupied & maskOf(from + 2 * up))) targets |= maskOf(from + 2 * up);
    return targets;
}

/// The position after piece `index` of the side to move has gone to `to`, capturing what was there.
inline Position childAfter(const Position& position, int index, Square64 to, PieceType becomes) {
    Position child = position;
    const Colour us = position.sideToMove;
    Position::Pieces& enemies = child.pieces[~us];
    for (int i = 0; i < enemies.count; ++i) {
        if (enemies.squares[i] == to) {
            enemies.remove(i);
            break;
        }
    }
    if (becomes == position.pieces[us].types[index]) {
        child.pieces[us].squares[index] = to;
    } else {
        child.pieces[us].remove(index);
        child.pieces[us].add(becomes, to);
    }
    child.sideToMove = ~us;
    return child;
}

template <typename Visit>
void forEachEnPassant(const Position& position, Square64 ep, Visit visit) {
    if (ep == NoEpSquare) return;
    const Colour us = position.sideToMove;
    const Square64 taken = us == White ? ep - 8 : ep + 8;
    for (int i = 1; i < position.pieces[us].count; ++i) {
        if (position.pieces[us].types[i] != Pawn) continue;
        if (!(pawnAttacks[us][position.pieces[us].squares[i]] & maskOf(ep))) continue;
        Position child = childAfter(position, i, taken, Pawn);
        child.pieces[us].squares[i] = ep;
        if (isLegal(child)) visit(child);
    }
}

template <typename Visit>
void forEachOrdinaryChild(const Position& position, Visit visit) {
    const Colour us = position.sideToMove;
    const Position::Pieces& own = position.pieces[us];
    const SquareMask friends = position.occupied(us);
    const SquareMask enemies = position.occupied(~us);
    SquareMask enemyPawns = 0;
    for (int i = 1; i < position.pieces[~us].count; ++i) {
        if (position.pieces[~us].types[i] == Pawn) {
            enemyPawns |= maskOf(position.pieces[~us].squares[i]);
        }
    }
    for (int i = 0; i < own.count; ++i) {
        const Square64 from = own.squares[i];
        const PieceType type = own.types[i];
        SquareMask targets = type == Pawn ? pawnTargets(us, from, friends | enemies, enemies)
                                          : pieceAttacks(type, from, friends | enemies) & ~friends;
        // The king cannot be captured in a legal position, but masks of attacks may include it.
        targets &= ~maskOf(position.pieces[~us].kingSquare());
        for (; targets; targets &= targets - 1) {
            const Square64 to = lowestSquare(targets);
            if (type == Pawn && (rankOf(to) == 0 || rankOf(to) == 7)) {
                for (const PieceType promoted : {Knight, Bishop, Rook, Queen}) {
                    const Position child = childAfter(position, i, to, promoted);
                    if (isLegal(child)) visit(child, NoEpSquare);
                }
                continue;
            }
            const Position child = childAfter(position, i, to, type);
            if (!isLegal(child)) continue;
            const bool isDoubleStep = type == Pawn && (to - from == 16 || from - to == 16);
            const auto passed = static_cast<Square64>((int{from} + to) / 2);
            visit(child,
                  isDoubleStep && (pawnAttacks[us][passed] & enemyPawns) ? passed : NoEpSquare);
        }
    }
}

template <typename Visit>
void forEachChild(const Position& position, Square64 ep, Visit visit) {
    forEachOrdinaryChild(position, visit);
    forEachEnPassant(position, ep, [&](const Position& child) { visit(child, NoEpSquare); });
}

}  // namespace vatro::egtb
