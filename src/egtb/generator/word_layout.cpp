// src/egtb/generator/word_layout.cpp - numbering words and finding their legal positions.
#include "egtb/generator/word_layout.h"

#include <algorithm>

#include "egtb/symmetry.h"

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

WordLayout::WordLayout(const Material& material)
    : manList(orderedMen(material)), withPawns(material.hasPawns()) {
    std::uint64_t stride = 1;
    for (int man = menCount() - 1; man >= 0; --man) {
        const bool isPawn = manList[man].type == Pawn;
        strides[man] = stride;
        firstSquare[man] = isPawn ? 8 : 0;
        squareCount[man] = isPawn ? 48 : 64;
        stride *= squareCount[man];
    }
    kingStride = stride;
    for (int square = 0; square < 64; ++square) {
        if (normalisingSymmetry(square, withPawns) != 0) continue;
        kingIndex[square] = static_cast<std::uint8_t>(kingSquares.size());
        kingSquares.push_back(static_cast<std::uint8_t>(square));
    }
    words = kingStride * kingSquares.size();
}

WordPieces WordLayout::pieces(std::uint64_t word) const {
    WordPieces result{};
    auto rest = static_cast<std::uint32_t>(word % kingStride);
    result.whiteKing = kingSquares[word / kingStride];
    result.occupied = maskOf(result.whiteKing);
    for (int man = menCount() - 1; man >= 0; --man) {
        const int square = static_cast<int>(rest % squareCount[man]) + firstSquare[man];
        rest /= squareCount[man];
        result.at[man] = square;
        result.occupied |= maskOf(square);
    }
    result.isPossible = countSquares(result.occupied) == menCount() + 1;
    return result;
}

SquareMask WordLayout::whiteAttacks(const WordPieces& pieces) const {
    SquareMask attacked = kingAttacks[pieces.whiteKing];
    for (int man = 0; man < menCount(); ++man) {
        if (manList[man].colour != White) continue;
        attacked |= manList[man].type == Pawn
                        ? pawnAttacks[White][pieces.at[man]]
                        : pieceAttacks(manList[man].type, pieces.at[man], pieces.occupied);
    }
    return attacked;
}

SquareMask WordLayout::whiteInCheck(const WordPieces& pieces) const {
    SquareMask inCheck = 0;
    for (int man = 0; man < menCount(); ++man) {
        if (manList[man].colour != Black) continue;
        const int from = pieces.at[man];
        if (attacks(manList[man].type, Black, from, pieces.whiteKing, pieces.occupied)) {
            // The black king may stand in the way of its own men.
            inCheck |= ~squaresBetween[from][pieces.whiteKing];
        }
    }
    return inCheck;
}

SquareMask WordLayout::legalKings(const WordPieces& pieces, Colour toMove) const {
    if (!pieces.isPossible) return 0;
    const SquareMask apart = ~pieces.occupied & ~kingAttacks[pieces.whiteKing];
    return apart & ~(toMove == White ? whiteAttacks(pieces) : whiteInCheck(pieces));
}

Position WordLayout::position(const WordPieces& pieces, int blackKing) const {
    Position position;
    position.pieces[White].add(King, pieces.whiteKing);
    position.pieces[Black].add(King, blackKing);
    for (int man = 0; man < menCount(); ++man) {
        position.pieces[manList[man].colour].add(manList[man].type, pieces.at[man]);
    }
    return position;
}

}  // namespace vatro::egtb
