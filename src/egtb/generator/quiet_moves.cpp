// src/egtb/generator/quiet_moves.cpp - who can reach a set of positions with a quiet move.
//
// The moves are made forward, from a word of positions to the words that hold their children. Only
// legal positions are in the sets, so that a move that leaves the king en prise reaches nothing.
#include "egtb/generator/ending.h"
#include "egtb/symmetry.h"

namespace vatro::egtb {
namespace {

// Square steps of sliders; where a line leaves the board comes from the masks.
constexpr int FirstBishopLine = 4;
constexpr struct {
    int step;
    int fileStep;
} lines[8] = {{8, 0}, {-8, 0}, {1, 1}, {-1, -1}, {9, 1}, {7, -1}, {-7, 1}, {-9, -1}};

/// Squares next to the ones in the set.
SquareMask kingSteps(SquareMask kings) {
    constexpr SquareMask NotFileA = 0xFEFEFEFEFEFEFEFEULL;
    constexpr SquareMask NotFileH = 0x7F7F7F7F7F7F7F7FULL;
    const SquareMask sideways = ((kings << 1) & NotFileA) | ((kings >> 1) & NotFileH);
    const SquareMask row = kings | sideways;
    return sideways | (row << 8) | (row >> 8);
}

}  // namespace

template <Colour Us, Ending::Goal G>
SquareMask Ending::whiteKingMovesTo(std::uint64_t word, const WordPieces& pieces) const {
    const std::vector<SquareMask>& set = targets<~Us, G>();
    SquareMask reached = 0;
    SquareMask moves = kingAttacks[pieces.whiteKing] & ~pieces.occupied;
    for (; moves; moves &= moves - 1) {
        const int to = lowestSquare(moves);
        const int symmetry = normalisingSymmetry(to, layout.hasPawns());
        if (symmetry == 0) {
            reached |= set[word - layout.kingPart(pieces.whiteKing) + layout.kingPart(to)];
            continue;
        }
        std::uint64_t target = layout.kingPart(mapSquare(to, symmetry));
        for (int man = 0; man < layout.menCount(); ++man) {
            target += layout.partOf(man, mapSquare(pieces.at[man], symmetry));
        }
        reached |= unmapSquares(set[target], symmetry);
    }
    return reached;
}

/// A pawn beside enemy pawns after a double step: the value of the position must take into account
/// that it can be taken en passant.
template <Colour Us, Ending::Goal G>
SquareMask Ending::doubleStepTo(
    std::uint64_t target, const WordPieces& pieces, int pawn, SquareMask wanted, int plies) const {
    constexpr Colour Them = ~Us;
    const SideToMove& side = sides[Them];
    const int passed = pieces.at[pawn] + (Us == White ? 8 : -8);
    ValueLine taking;
    taking.fill(NoMove);
    for (int man = 0; man < layout.menCount(); ++man) {
        if (layout.men()[man] != Man{Pawn, Them}) continue;
        if (!(pawnAttacks[Us][passed] & maskOf(pieces.at[man]))) continue;
        std::array<int, MaxMen> at = pieces.at;
        at[man] = passed;
        ValueLine line;
        fetch(captureOf[pawn], pieces.whiteKing, at, line);
        for (int king = 0; king < 64; ++king) {
            if (line[king] > taking[king]) taking[king] = line[king];
        }
    }
    SquareMask reached = 0;
    if constexpr (G == Goal::NotWon) {
        const int leastWin = 256 - (plies + 1) / 2;  // above every value at ply 0
        for (SquareMask rest = side.notWon[target] & wanted; rest; rest &= rest - 1) {
            if (taking[lowestSquare(rest)] < leastWin) reached |= rest & -rest;
        }
    } else {
        // Stalemate but for the capture, which must then be made.
        const SquareMask stalemates = side.notWon[target] & ~side.lost[target] & ~side.open[target];
        for (SquareMask rest = (side.lost[target] | stalemates) & wanted; rest; rest &= rest - 1) {
            const Value value = taking[lowestSquare(rest)];
            if (value > lossIn(plies)) continue;
            if (value == NoMove && (stalemates & rest & -rest)) continue;
            reached |= rest & -rest;
        }
    }
    return reached;
}

template <Colour Us, Ending::Goal G>
SquareMask Ending::pawnMovesTo(
    std::uint64_t word, const WordPieces& pieces, int pawn, SquareMask wanted, int plies) const {
    constexpr int Up = Us == White ? 8 : -8;
    constexpr int HomeRank = Us == White ? 1 : 6;
    constexpr int LastRank = Us == White ? 7 : 0;
    const std::vector<SquareMask>& set = targets<~Us, G>();
    const int from = pieces.at[pawn];
    const int to = from + Up;
    if (rankOf64(to) == LastRank || (pieces.occupied & maskOf(to))) return 0;
    const std::uint64_t rest = word - layout.partOf(pawn, from);
    SquareMask reached = set[rest + layout.partOf(pawn, to)];
    const int further = to + Up;
    if (rankOf64(from) != HomeRank || (pieces.occupied & maskOf(further))) return reached;
    const SquareMask unblocked = wanted & ~maskOf(to);
    const std::uint64_t target = rest + layout.partOf(pawn, further);
    for (int man = 0; man < layout.menCount(); ++man) {
        if (layout.men()[man] != Man{Pawn, ~Us}) continue;
        if (pawnAttacks[Us][to] & maskOf(pieces.at[man])) {
            return reached | doubleStepTo<Us, G>(target, pieces, pawn, unblocked, plies);
        }
    }
    return reached | (set[target] & unblocked);
}

/// The positions of a word, among those wanted, from which a quiet move reaches the goal within
/// `plies`. Other bits of the answer mean nothing.
template <Colour Us, Ending::Goal G>
SquareMask Ending::quietMovesTo(std::uint64_t word,
                                const WordPieces& pieces,
                                SquareMask wanted,
                                int plies) const {
    const std::vector<SquareMask>& set = targets<~Us, G>();
    SquareMask reached = Us == White ? whiteKingMovesTo<Us, G>(word, pieces) : kingSteps(set[word]);
    for (int man = 0; man < layout.menCount(); ++man) {
        if (layout.men()[man].colour != Us) continue;
        if ((wanted & ~reached) == 0) return reached;
        const PieceType type = layout.men()[man].type;
        const int from = pieces.at[man];
        if (type == Pawn) {
            reached |= pawnMovesTo<Us, G>(word, pieces, man, wanted, plies);
            continue;
        }
        const std::uint64_t rest = word - layout.partOf(man, from);
        if (type == Knight) {
            SquareMask moves = knightAttacks[from] & ~pieces.occupied;
            for (; moves; moves &= moves - 1) {
                reached |= set[rest + layout.partOf(man, lowestSquare(moves))];
            }
            continue;
        }
        const int lineBegin = type == Bishop ? FirstBishopLine : 0;
        const int lineEnd = type == Rook ? FirstBishopLine : 8;
        for (int line = lineBegin; line < lineEnd; ++line) {
            SquareMask unblocked = ~SquareMask{0};  // black kings that leave the way free
            int file = fileOf64(from) + lines[line].fileStep;
            int to = from + lines[line].step;
            while (to >= 0 && to < 64 && file >= 0 && file < 8) {
                if (pieces.occupied & maskOf(to)) break;
                reached |= set[rest + layout.partOf(man, to)] & unblocked;
                unblocked &= ~maskOf(to);
                to += lines[line].step;
                file += lines[line].fileStep;
            }
        }
    }
    return reached;
}

template SquareMask Ending::quietMovesTo<White, Ending::Goal::Lost>(std::uint64_t,
                                                                    const WordPieces&,
                                                                    SquareMask,
                                                                    int) const;
template SquareMask Ending::quietMovesTo<Black, Ending::Goal::Lost>(std::uint64_t,
                                                                    const WordPieces&,
                                                                    SquareMask,
                                                                    int) const;
template SquareMask Ending::quietMovesTo<White, Ending::Goal::NotWon>(std::uint64_t,
                                                                      const WordPieces&,
                                                                      SquareMask,
                                                                      int) const;
template SquareMask Ending::quietMovesTo<Black, Ending::Goal::NotWon>(std::uint64_t,
                                                                      const WordPieces&,
                                                                      SquareMask,
                                                                      int) const;

}  // namespace vatro::egtb
