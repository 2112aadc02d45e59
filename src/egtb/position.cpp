// egtb/position.cpp - keeping the pieces sorted, checks and legality.
#include "egtb/position.h"

namespace vatro::egtb {

bool Position::Pieces::add(PieceType type, Square64 square) {
    if (count == MaxPieces - 1) return false;
    int slot = count++;
    for (; slot > 0 && types[slot - 1] < type; --slot) {
        types[slot] = types[slot - 1];
        squares[slot] = squares[slot - 1];
    }
    types[slot] = type;
    squares[slot] = square;
    return true;
}

void Position::Pieces::remove(int index) {
    assert(index >= 0 && index < count);
    --count;
    for (int i = index; i < count; ++i) {
        types[i] = types[i + 1];
        squares[i] = squares[i + 1];
    }
}

SquareMask Position::occupied(Colour colour) const {
    SquareMask mask = 0;
    for (int i = 0; i < pieces[colour].count; ++i) {
        mask |= maskOf(pieces[colour].squares[i]);
    }
    return mask;
}

Material Position::material() const {
    Material material;
    for (const Colour colour : {White, Black}) {
        for (int i = 1; i < pieces[colour].count; ++i) {
            material.side[colour].types[i - 1] = pieces[colour].types[i];
        }
        material.side[colour].count = pieces[colour].count - 1;
    }
    return material;
}

Position Position::withColoursSwapped() const {
    Position swapped = *this;
    for (const Colour colour : {White, Black}) {
        swapped.pieces[colour] = pieces[~colour];
        for (int i = 0; i < swapped.pieces[colour].count; ++i) {
            Square64& square = swapped.pieces[colour].squares[i];
            square = mirrorRanks(square);
        }
    }
    swapped.sideToMove = ~sideToMove;
    return swapped;
}

bool isInCheck(const Position& position, Colour colour) {
    const Position::Pieces& enemies = position.pieces[~colour];
    const Square64 king = position.pieces[colour].kingSquare();
    const SquareMask occupied = position.occupied();
    for (int i = 0; i < enemies.count; ++i) {
        if (attacks(enemies.types[i], ~colour, enemies.squares[i], king, occupied)) return true;
    }
    return false;
}

bool isWellFormed(const Position& position) {
    int total = 0;
    for (const Position::Pieces& side : position.pieces) {
        if (side.count == 0 || side.types[0] != King) return false;
        for (int i = 0; i < side.count; ++i) {
            const int rank = rankOf(side.squares[i]);
            if (i > 0 && side.types[i] == King) return false;
            if (side.types[i] == Pawn && (rank == 0 || rank == 7)) return false;
        }
        total += side.count;
    }
    return total <= MaxPieces && countSquares(position.occupied()) == total;
}

bool hasOrdinaryMove(const Position& position) {
    bool found = false;
    forEachOrdinaryChild(position, [&](const Position&, Square64) { found = true; });
    return found;
}

}  // namespace vatro::egtb
