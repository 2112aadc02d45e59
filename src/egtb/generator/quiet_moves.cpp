// egtb/generator/quiet_moves.cpp - which positions reach undecided ones by a quiet move.
//
// Moves are made forward, from a word of positions to the words of their children. The sets hold
// only legal positions, so a move that leaves the king in check reaches nothing.
#include <algorithm>

#include "egtb/generator/ending.h"
#include "egtb/generator/lines.h"
#include "egtb/symmetry.h"

namespace vatro::egtb {

template <Colour Us>
SquareMask Ending::whiteKingMovesTo(const LargeArray<SquareMask>& set,
                                    std::uint64_t word,
                                    const WordPieces& pieces) const {
    SquareMask reached = 0;
    SquareMask moves = kingAttacks[pieces.whiteKing] & ~pieces.occupied;
    const std::uint64_t rest = word - layout.kingPart(pieces.whiteKing);
    for (; moves; moves &= moves - 1) {
        const Square64 to = lowestSquare(moves);
        const int symmetry = normalisingSymmetry(to, layout.hasPawns());
        if (symmetry == 0) {
            reached |= set[rest + layout.kingPart(to)];
            continue;
        }
        ManSquares at{};
        for (int man = 0; man < layout.menCount(); ++man) {
            at[man] = mapSquare(pieces.at[man], symmetry);
        }
        reached |= unmapSquares(set[layout.wordOf(mapSquare(to, symmetry), at)], symmetry);
    }
    return reached;
}

/// The pawn stands on its home rank, and after its double step a pawn of the other side could take
/// it en passant.
template <Colour Us>
bool Ending::canBePassed(const WordPieces& pieces, int pawn) const {
    constexpr int Up = Us == White ? 8 : -8;
    constexpr int PawnHomeRank = Us == White ? 1 : 6;
    const Square64 from = pieces.at[pawn];
    if (layout.men()[pawn] != Man{Pawn, Us} || rankOf(from) != PawnHomeRank) return false;
    if (pieces.occupied & (maskOf(from + Up) | maskOf(from + 2 * Up))) return false;
    for (int man = 0; man < layout.menCount(); ++man) {
        if (layout.men()[man] != Man{Pawn, ~Us}) continue;
        if (pawnAttacks[Us][from + Up] & maskOf(pieces.at[man])) return true;
    }
    return false;
}

template <Colour Us>
SquareMask Ending::pawnMovesToNotWon(
    std::uint64_t word, const WordPieces& pieces, int pawn, SquareMask wanted, int plies) const {
    constexpr int Up = Us == White ? 8 : -8;
    constexpr int PawnHomeRank = Us == White ? 1 : 6;
    constexpr int LastRank = Us == White ? 7 : 0;
    const LargeArray<SquareMask>& set = sides[~Us].notWon;
    const Square64 from = pieces.at[pawn];
    const Square64 to = from + Up;
    if (rankOf(to) == LastRank || (pieces.occupied & maskOf(to))) return 0;
    const WordsOfMan words = layout.wordsOfMan(word, pieces, pawn);
    SquareMask reached = set[words[to]];
    const Square64 further = to + Up;
    if (rankOf(from) != PawnHomeRank || (pieces.occupied & maskOf(further))) return reached;
    SquareMask doubled = set[words[further]] & wanted & ~maskOf(to);
    if (doubled && canBePassed<Us>(pieces, pawn)) {
        // What a capture en passant wins within `plies` does not count as not won. Below this value
        // are at least the draws: a win of any length is above them.
        const int leastWin = std::max(winIn(1) + 1 - (plies + 1) / 2, DrawValue + 1);
        const ValueLine taking = capturesEnPassant<Us>(pieces, pawn);
        for (SquareMask rest = doubled; rest; rest &= rest - 1) {
            if (taking[lowestSquare(rest)] >= leastWin) doubled &= ~(rest & -rest);
        }
    }
    return reached | doubled;
}

/// Those of the wanted positions of a word from which a quiet move reaches a position that is not
/// won for the other side within `plies`. Bits of unwanted positions are undefined.
template <Colour Us>
SquareMask Ending::movesToNotWon(std::uint64_t word,
                                 const WordPieces& pieces,
                                 SquareMask wanted,
                                 int plies) const {
    const LargeArray<SquareMask>& set = sides[~Us].notWon;
    SquareMask reached =
        Us == White ? whiteKingMovesTo<Us>(set, word, pieces) : kingSteps(set[word]);
    for (int man = 0; man < layout.menCount(); ++man) {
        if (layout.men()[man].colour != Us) continue;
        if ((wanted & ~reached) == 0) return reached;
        const PieceType type = layout.men()[man].type;
        if (type == Pawn) {
            reached |= pawnMovesToNotWon<Us>(word, pieces, man, wanted, plies);
            continue;
        }
        const WordsOfMan words = layout.wordsOfMan(word, pieces, man);
        if (type == Knight) {
            SquareMask moves = knightAttacks[pieces.at[man]] & ~pieces.occupied;
            for (; moves; moves &= moves - 1) {
                reached |= set[words[lowestSquare(moves)]];
            }
            continue;
        }
        forEachSlide(type, pieces.at[man], pieces.occupied, [&](Square64 to, SquareMask unblocked) {
            reached |= set[words[to]] & unblocked;
        });
    }
    return reached;
}

/// Those of the wanted positions of a word from which a double step that can be answered en passant
/// reaches a position that is lost for the other side within `plies`.
template <Colour Us>
SquareMask Ending::doubleStepsToLost(std::uint64_t word, SquareMask wanted, int plies) const {
    constexpr int Up = Us == White ? 8 : -8;
    const SideToMove& them = sides[~Us];
    const WordPieces pieces = layout.pieces(word);
    SquareMask reached = 0;
    for (int pawn = 0; pawn < layout.menCount(); ++pawn) {
        if (!canBePassed<Us>(pieces, pawn)) continue;
        const Square64 from = pieces.at[pawn];
        const std::uint64_t target = layout.wordsOfMan(word, pieces, pawn)[from + 2 * Up];
        SquareMask rest = wanted & ~maskOf(from + Up) & them.notWon[target] & ~them.open[target];
        if (rest == 0) continue;
        const ValueLine taking = capturesEnPassant<Us>(pieces, pawn);
        const ValueLine& values = them.values[target];
        for (; rest; rest &= rest - 1) {
            const Square64 king = lowestSquare(rest);
            // A position that is known to be drawn before the end is a stalemate. The capture is
            // then the only move, if there is one.
            const bool isStalemate = values[king] == DrawValue;
            if (isStalemate && taking[king] == NoMoveValue) continue;
            if (taking[king] <= lossIn(plies)) reached |= maskOf(king);
        }
    }
    return reached;
}

template bool Ending::canBePassed<White>(const WordPieces&, int) const;
template bool Ending::canBePassed<Black>(const WordPieces&, int) const;
template SquareMask Ending::movesToNotWon<White>(std::uint64_t,
                                                 const WordPieces&,
                                                 SquareMask,
                                                 int) const;
template SquareMask Ending::movesToNotWon<Black>(std::uint64_t,
                                                 const WordPieces&,
                                                 SquareMask,
                                                 int) const;
template SquareMask Ending::doubleStepsToLost<White>(std::uint64_t, SquareMask, int) const;
template SquareMask Ending::doubleStepsToLost<Black>(std::uint64_t, SquareMask, int) const;

}  // namespace vatro::egtb
