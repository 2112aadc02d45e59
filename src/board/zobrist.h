// board/zobrist.h - the Zobrist keys of positions.
//
// The keys are the same in every run and on every platform: tables, node counts and signatures
// depend on them. The opening book has keys of its own.
#pragma once

#include <initializer_list>

#include "board/types.h"

namespace vatro {

struct ZobristKeys {
    Key piece[ColourCount][PieceKindCount][64];  // by colour, kind and Square64
    Key castling[16];                            // by single right; entries of other indices are 0
    Key epFile[8];                               // by file of the en-passant square
    Key side;                                    // when Black is to move

    constexpr Key pieceSquare(Colour colour, PieceType type, Square64 square) const {
        return piece[colour][kindOf(type)][square];
    }
};
extern const ZobristKeys zobrist;

/// XORs into `key` the castling key of every right in which the two sets differ.
inline void updateCastlingKey(unsigned oldRights, unsigned newRights, Key& key) {
    const unsigned changed = oldRights ^ newRights;
    if (changed == 0) return;
    for (const unsigned right : {1U, 2U, 4U, 8U}) {
        if (changed & right) key ^= zobrist.castling[right];
    }
}

/// The key of a set of castling rights: the XOR of its single rights' keys.
inline Key castlingKey(unsigned rights) {
    Key key = 0;
    updateCastlingKey(0, rights, key);
    return key;
}

}  // namespace vatro
