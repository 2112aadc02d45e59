// egtb/generator/capture_values.cpp - the best capture or promotion of each position.
#include <algorithm>

#include "egtb/generator/ending.h"
#include "egtb/generator/value_line.h"

namespace vatro::egtb {

/// Improves `best` by the values of a move into a smaller ending, which black kings on the barred
/// squares prevent.
void Ending::takeBest(const Link& link,
                      Square64 whiteKing,
                      const ManSquares& at,
                      SquareMask barred,
                      ValueLine& best) {
    const ManSquares places{at[link.from[0]], at[link.from[1]], at[link.from[2]]};
    int symmetry = 0;
    const ValueLine& line = link.table->lineOf(whiteKing, places, symmetry);
    improve(best, line, symmetry, barred);
}

template <Colour Us>
void Ending::addPromotions(
    const WordPieces& pieces, int pawn, Square64 to, int captured, ValueLine& best) const {
    ManSquares at = pieces.at;
    at[pawn] = to;
    for (int type = 0; type < PromotionCount; ++type) {
        const Link& link =
            captured < 0 ? promotionOf[pawn][type] : capturingPromotionOf[pawn][type][captured];
        takeBest(link, pieces.whiteKing, at, 0, best);
    }
}

template <Colour Us>
void Ending::addCaptures(const WordPieces& pieces, ValueLine& best) const {
    constexpr int LastRank = Us == White ? 7 : 0;
    constexpr int Up = Us == White ? 8 : -8;
    const std::vector<Man>& men = layout.men();
    best.fill(NoMoveValue);
    for (int captured = 0; captured < layout.menCount(); ++captured) {
        if (men[captured].colour == Us) continue;
        const Square64 to = pieces.at[captured];
        const Link& link = captureOf[captured];
        for (int man = 0; man < layout.menCount(); ++man) {
            const Square64 from = pieces.at[man];
            if (men[man].colour != Us) continue;
            if (!attacks(men[man].type, Us, from, to, pieces.occupied)) continue;
            if (men[man].type == Pawn && rankOf(to) == LastRank) {
                addPromotions<Us>(pieces, man, to, captured, best);
                continue;
            }
            ManSquares at = pieces.at;
            at[man] = to;
            takeBest(link, pieces.whiteKing, at, squaresBetween[from][to], best);
        }
        if constexpr (Us == White) {
            if (kingAttacks[pieces.whiteKing] & maskOf(to)) {
                takeBest(link, to, pieces.at, 0, best);
            }
        } else {
            ValueLine line{};
            takeBest(link, pieces.whiteKing, pieces.at, 0, line);
            for (SquareMask kings = kingAttacks[to]; kings; kings &= kings - 1) {
                Value& value = best[lowestSquare(kings)];
                value = std::max(value, line[to]);
            }
        }
    }
    for (int pawn = 0; pawn < layout.menCount(); ++pawn) {
        if (men[pawn].type != Pawn || men[pawn].colour != Us) continue;
        const Square64 to = pieces.at[pawn] + Up;
        if (rankOf(to) != LastRank || (pieces.occupied & maskOf(to))) continue;
        addPromotions<Us>(pieces, pawn, to, -1, best);
    }
}

/// The best capture en passant of the other side after the double step of a pawn.
template <Colour Us>
ValueLine Ending::capturesEnPassant(const WordPieces& pieces, int pawn) const {
    const Square64 passed = pieces.at[pawn] + (Us == White ? 8 : -8);
    ValueLine best;
    best.fill(NoMoveValue);
    for (int man = 0; man < layout.menCount(); ++man) {
        if (layout.men()[man] != Man{Pawn, ~Us}) continue;
        if (!(pawnAttacks[Us][passed] & maskOf(pieces.at[man]))) continue;
        ManSquares at = pieces.at;
        at[man] = passed;
        takeBest(captureOf[pawn], pieces.whiteKing, at, 0, best);
    }
    return best;
}

template void Ending::addCaptures<White>(const WordPieces&, ValueLine&) const;
template void Ending::addCaptures<Black>(const WordPieces&, ValueLine&) const;
template ValueLine Ending::capturesEnPassant<White>(const WordPieces&, int) const;
template ValueLine Ending::capturesEnPassant<Black>(const WordPieces&, int) const;

}  // namespace vatro::egtb
