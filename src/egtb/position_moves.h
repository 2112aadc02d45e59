// src/egtb/position_moves.h - the moves of a position of a few pieces, for the rare probes that
// need them and for checking finished tables. Included by position.h.
#pragma once

#include "egtb/position.h"

namespace vatro::egtb {

/// Squares to which a piece other than a pawn can go or where it captures.
inline SquareMask pieceAttacks(PieceType type, int from, SquareMask occupied) {
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

/// Squares to which a pawn goes: one or two empty squares ahead, or an enemy that it takes.
inline SquareMask pawnTargets(Colour us, int from, SquareMask occupied, SquareMask enemies) {
    const int up = us == White ? 8 : -8;
    SquareMask targets = pawnAttacks[us][from] & enemies;
    if (occupied & maskOf(from + up)) return targets;
    targets |= maskOf(from + up);
    const bool onHomeRank = rankOf64(from) == (us == White ? 1 : 6);
    if (onHomeRank && !(occupied & maskOf(from + 2 * up))) targets |= maskOf(from + 2 * up);
    return targets;
}

/// The child after piece `index` of the side to move goes to `to`, taking what stands there.
inline Position childAfter(const Position& position, int index, int to, PieceType becomes) {
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
        child.pieces[us].squares[index] = static_cast<std::uint8_t>(to);
    } else {
        child.pieces[us].remove(index);
        child.pieces[us].add(becomes, to);
    }
    child.sideToMove = ~us;
    return child;
}

template <typename Visit>
void forEachEnPassant(const Position& position, int ep, Visit visit) {
    if (ep == NoEpSquare) return;
    const Colour us = position.sideToMove;
    const int taken = us == White ? ep - 8 : ep + 8;
    for (int i = 1; i < position.pieces[us].count; ++i) {
        if (position.pieces[us].types[i] != Pawn) continue;
        if (!(pawnAttacks[us][position.pieces[us].squares[i]] & maskOf(ep))) continue;
        Position child = childAfter(position, i, taken, Pawn);
        child.pieces[us].squares[i] = static_cast<std::uint8_t>(ep);
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
        const int from = own.squares[i];
        const PieceType type = own.types[i];
        SquareMask targets = type == Pawn ? pawnTargets(us, from, friends | enemies, enemies)
                                          : pieceAttacks(type, from, friends | enemies) & ~friends;
        // A king is never taken: positions that would allow it are not legal.
        targets &= ~maskOf(position.pieces[~us].kingSquare());
        for (; targets; targets &= targets - 1) {
            const int to = lowestSquare(targets);
            if (type == Pawn && (rankOf64(to) == 0 || rankOf64(to) == 7)) {
                for (const PieceType promoted : {Knight, Bishop, Rook, Queen}) {
                    const Position child = childAfter(position, i, to, promoted);
                    if (isLegal(child)) visit(child, NoEpSquare);
                }
                continue;
            }
            const Position child = childAfter(position, i, to, type);
            if (!isLegal(child)) continue;
            const bool isDoubleStep = type == Pawn && (to - from == 16 || from - to == 16);
            const int passed = (from + to) / 2;
            visit(child,
                  isDoubleStep && (pawnAttacks[us][passed] & enemyPawns) ? passed : NoEpSquare);
        }
    }
}

template <typename Visit>
void forEachChild(const Position& position, int ep, Visit visit) {
    forEachOrdinaryChild(position, visit);
    forEachEnPassant(position, ep, [&](const Position& child) { visit(child, NoEpSquare); });
}

}  // namespace vatro::egtb
