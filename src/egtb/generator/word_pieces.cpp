// egtb/generator/word_pieces.cpp - order of the men, checks and legality of whole words.
#include "egtb/generator/word_pieces.h"

#include <algorithm>

namespace vatro::egtb {

std::vector<Man> orderedMen(const Material& material) {
    std::vector<Man> men;
    for (const Colour colour : {White, Black}) {
        const MenOfSide& side = material.side[colour];
        for (int i = 0; i < side.count; ++i) {
            men.push_back({side.types[i], colour});
        }
    }
    std::stable_partition(men.begin(), men.end(), [](const Man& man) { return man.type == Pawn; });
    return men;
}

SquareMask whiteAttacks(const std::vector<Man>& men, const WordPieces& pieces) {
    SquareMask attacked = kingAttacks[pieces.whiteKing];
    for (std::size_t man = 0; man < men.size(); ++man) {
        if (men[man].colour != White) continue;
        attacked |= men[man].type == Pawn
                        ? pawnAttacks[White][pieces.at[man]]
                        : pieceAttacks(men[man].type, pieces.at[man], pieces.occupied);
    }
    return attacked;
}

SquareMask whiteInCheck(const std::vector<Man>& men, const WordPieces& pieces) {
    SquareMask inCheck = 0;
    for (std::size_t man = 0; man < men.size(); ++man) {
        if (men[man].colour != Black) continue;
        const Square64 from = pieces.at[man];
        if (attacks(men[man].type, Black, from, pieces.whiteKing, pieces.occupied)) {
            // The black king may block the line of its own man.
            inCheck |= ~squaresBetween[from][pieces.whiteKing];
        }
    }
    return inCheck;
}

SquareMask legalKings(const std::vector<Man>& men, const WordPieces& pieces, Colour toMove) {
    if (!pieces.isPossible) return 0;
    const SquareMask apart = ~pieces.occupied & ~kingAttacks[pieces.whiteKing];
    return apart & ~(toMove == White ? whiteAttacks(men, pieces) : whiteInCheck(men, pieces));
}

Position positionOf(const std::vector<Man>& men, const WordPieces& pieces, Square64 blackKing) {
    Position position;
    position.pieces[White].add(King, pieces.whiteKing);
    position.pieces[Black].add(King, blackKing);
    for (std::size_t man = 0; man < men.size(); ++man) {
        position.pieces[men[man].colour].add(men[man].type, pieces.at[man]);
    }
    return position;
}

}  // namespace vatro::egtb
