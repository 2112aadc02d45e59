// src/egtb/generator/capture_values.cpp - what the captures and promotions of a position are worth.
#include <algorithm>

#include "egtb/generator/ending.h"

namespace vatro::egtb {
namespace {

void takeBest(ValueLine& best, const ValueLine& other) {
    for (std::size_t king = 0; king < best.size(); ++king) {
        best[king] = std::max(best[king], other[king]);
    }
}

/// No move: the black king stands in its way.
void block(ValueLine& line, SquareMask kings) {
    for (; kings; kings &= kings - 1) {
        line[lowestSquare(kings)] = NoMove;
    }
}

}  // namespace

void Ending::fetch(const Link& link,
                   int whiteKing,
                   const std::array<int, MaxMen>& at,
                   ValueLine& line) const {
    const std::array<int, MaxMen> places{at[link.from[0]], at[link.from[1]], at[link.from[2]]};
    link.table->fetch(whiteKing, places.data(), line);
}

template <Colour Us>
void Ending::addPromotions(
    const WordPieces& pieces, int pawn, int to, int captured, ValueLine& best) const {
    std::array<int, MaxMen> at = pieces.at;
    at[pawn] = to;
    ValueLine line;
    for (int type = 0; type < PromotionCount; ++type) {
        const Link& link =
            captured < 0 ? promotionOf[pawn][type] : capturingPromotionOf[pawn][type][captured];
        fetch(link, pieces.whiteKing, at, line);
        takeBest(best, line);
    }
}

template <Colour Us>
void Ending::addCaptures(const WordPieces& pieces, ValueLine& best) const {
    constexpr int LastRank = Us == White ? 7 : 0;
    constexpr int Up = Us == White ? 8 : -8;
    const std::vector<Man>& men = layout.men();
    ValueLine line;
    best.fill(NoMove);
    for (int captured = 0; captured < layout.menCount(); ++captured) {
        if (men[captured].colour == Us) continue;
        const int to = pieces.at[captured];
        const Link& link = captureOf[captured];
        for (int man = 0; man < layout.menCount(); ++man) {
            const int from = pieces.at[man];
            if (men[man].colour != Us) continue;
            if (!attacks(men[man].type, Us, from, to, pieces.occupied)) continue;
            if (men[man].type == Pawn && rankOf64(to) == LastRank) {
                addPromotions<Us>(pieces, man, to, captured, best);
                continue;
            }
            std::array<int, MaxMen> at = pieces.at;
            at[man] = to;
            fetch(link, pieces.whiteKing, at, line);
            block(line, squaresBetween[from][to]);
            takeBest(best, line);
        }
        if constexpr (Us == White) {
            if (kingAttacks[pieces.whiteKing] & maskOf(to)) {
                fetch(link, to, pieces.at, line);
                takeBest(best, line);
            }
        } else {
            fetch(link, pieces.whiteKing, pieces.at, line);
            for (SquareMask kings = kingAttacks[to]; kings; kings &= kings - 1) {
                Value& value = best[lowestSquare(kings)];
                value = std::max(value, line[to]);
            }
        }
    }
    for (int pawn = 0; pawn < layout.menCount(); ++pawn) {
        if (men[pawn].type != Pawn || men[pawn].colour != Us) continue;
        const int to = pieces.at[pawn] + Up;
        if (rankOf64(to) != LastRank || (pieces.occupied & maskOf(to))) continue;
        addPromotions<Us>(pieces, pawn, to, -1, best);
    }
}

template void Ending::addCaptures<White>(const WordPieces&, ValueLine&) const;
template void Ending::addCaptures<Black>(const WordPieces&, ValueLine&) const;

}  // namespace vatro::egtb
