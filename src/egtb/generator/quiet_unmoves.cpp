// egtb/generator/quiet_unmoves.cpp - which positions reach the ones just decided by a quiet move.
//
// Moves are taken back, from a word of positions to the words of their parents. A quiet move is
// taken back like it is made but for a pawn's; what is no legal position is not open and falls out.
#include <atomic>

#include "egtb/generator/ending.h"
#include "egtb/generator/lines.h"
#include "egtb/symmetry.h"

namespace vatro::egtb {
namespace {

/// The squares that the symmetry makes of those of `mask`.
constexpr SquareMask mapSquares(SquareMask mask, int symmetry) {
    if (symmetry & MirrorFiles) mask = mirrorFiles(mask);
    if (symmetry & MirrorRanks) mask = mirrorRanks(mask);
    if (symmetry & SwapAxes) mask = swapAxes(mask);
    return mask;
}

}  // namespace

/// Adds what is open of the positions to the candidates of their word. With `losable`, only
/// positions that no capture saves.
template <Colour Us>
void Ending::addCandidates(std::uint64_t word, SquareMask found, bool losable) {
    SideToMove& side = sides[Us];
    found &= side.open[word];
    if (losable) found &= side.losable[word];
    if (found == 0) return;
    std::atomic_ref<SquareMask> candidates(side.candidates[word]);
    // Most are there already; reading is cheaper than writing.
    if (found & ~candidates.load(std::memory_order_relaxed)) {
        candidates.fetch_or(found, std::memory_order_relaxed);
    }
}

template <Colour Us>
void Ending::unmoveWhiteKing(std::uint64_t word,
                             const WordPieces& pieces,
                             SquareMask reached,
                             bool losable) {
    const std::uint64_t rest = word - layout.kingPart(pieces.whiteKing);
    SquareMask moves = kingAttacks[pieces.whiteKing] & ~pieces.occupied;
    for (; moves; moves &= moves - 1) {
        const Square64 from = lowestSquare(moves);
        const int symmetry = normalisingSymmetry(from, layout.hasPawns());
        const Square64 normal = mapSquare(from, symmetry);
        if (symmetry == 0) {
            addCandidates<Us>(rest + layout.kingPart(from), reached, losable);
        }
        // A word with the king on the diagonal has a mirror image, which is a parent too.
        const bool hasTwin = !layout.hasPawns() && fileOf(normal) == rankOf(normal);
        for (const int turn : {symmetry, symmetry ^ SwapAxes}) {
            if (turn == 0 || (turn != symmetry && !hasTwin)) continue;
            ManSquares at{};
            for (int man = 0; man < layout.menCount(); ++man) {
                at[man] = mapSquare(pieces.at[man], turn);
            }
            const std::uint64_t parent = layout.wordOf(mapSquare(from, turn), at);
            addCandidates<Us>(parent, mapSquares(reached, turn), losable);
        }
    }
}

template <Colour Us>
void Ending::unmovePawn(
    std::uint64_t word, const WordPieces& pieces, int pawn, SquareMask reached, bool losable) {
    constexpr int Up = Us == White ? 8 : -8;
    constexpr int PawnHomeRank = Us == White ? 1 : 6;
    const Square64 to = pieces.at[pawn];
    const Square64 from = to - Up;
    if (rankOf(to) == PawnHomeRank || (pieces.occupied & maskOf(from))) return;
    const WordsOfMan words = layout.wordsOfMan(word, pieces, pawn);
    addCandidates<Us>(words[from], reached, losable);
    const Square64 home = from - Up;
    if (rankOf(from) == PawnHomeRank || rankOf(home) != PawnHomeRank) return;
    if (pieces.occupied & maskOf(home)) return;
    // Double steps that can be answered en passant are looked at from the parent, at every ply.
    for (int man = 0; man < layout.menCount(); ++man) {
        if (layout.men()[man] != Man{Pawn, ~Us}) continue;
        if (pawnAttacks[Us][from] & maskOf(pieces.at[man])) return;
    }
    addCandidates<Us>(words[home], reached & ~maskOf(from), losable);
}

/// Makes candidates of the positions from which a quiet move of `Us` leads to the given ones.
template <Colour Us>
void Ending::unmoveQuietly(std::uint64_t word, SquareMask reached, bool losable) {
    const WordPieces pieces = layout.pieces(word);
    if constexpr (Us == White) {
        unmoveWhiteKing<Us>(word, pieces, reached, losable);
    } else {
        addCandidates<Us>(word, kingSteps(reached), losable);
    }
    for (int man = 0; man < layout.menCount(); ++man) {
        if (layout.men()[man].colour != Us) continue;
        const PieceType type = layout.men()[man].type;
        if (type == Pawn) {
            unmovePawn<Us>(word, pieces, man, reached, losable);
            continue;
        }
        const WordsOfMan words = layout.wordsOfMan(word, pieces, man);
        if (type == Knight) {
            SquareMask moves = knightAttacks[pieces.at[man]] & ~pieces.occupied;
            for (; moves; moves &= moves - 1) {
                addCandidates<Us>(words[lowestSquare(moves)], reached, losable);
            }
            continue;
        }
        forEachSlide(type, pieces.at[man], pieces.occupied,
                     [&](Square64 from, SquareMask unblocked) {
                         addCandidates<Us>(words[from], reached & unblocked, losable);
                     });
    }
}

template void Ending::addCandidates<White>(std::uint64_t, SquareMask, bool);
template void Ending::addCandidates<Black>(std::uint64_t, SquareMask, bool);
template void Ending::unmoveQuietly<White>(std::uint64_t, SquareMask, bool);
template void Ending::unmoveQuietly<Black>(std::uint64_t, SquareMask, bool);

}  // namespace vatro::egtb
