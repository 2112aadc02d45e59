// eval/pawn_structure.cpp - isolated, doubled, backward and passed pawns; open and half-open files.
#include "eval/pawn_structure.h"

#include "board/side.h"
#include "eval/pawn_masks.h"

namespace vatro {
namespace {

// Tuned; no derivation.
constexpr ScoreSum isolatedFile{-31, -13};  // once for the file, however many pawns stand there
constexpr ScoreSum doubledFile{-6, -30};    // the same
constexpr ScoreSum backwardAttacked{-24, -13};
constexpr ScoreSum backwardBlocked{12, -5};

/// The ranks on which a pawn can be backward: the second to the fifth of its colour.
template <Colour Us>
constexpr SquareMask backwardRanks = Us == White ? 0x000000FFFFFFFF00ULL : 0x00FFFFFFFF000000ULL;

/// The squares ahead of a backward pawn, up to the rank of the nearest own pawn on a file beside
/// it.
template <Colour Us>
SquareMask pathToSupport(Square64 pawn, SquareMask own) {
    const SquareMask front = frontSpan<Us>(pawn);
    const SquareMask ahead = own & beside(front);  // not empty: the pawn is not isolated
    const Square64 nearest = Us == White ? lowestSquare(ahead) : highestSquare(ahead);
    const Square64 onNearestRank = square64At(fileOf(pawn), rankOf(nearest));
    return front & ~frontSpan<Us>(onNearestRank);
}

template <Colour Us>
ScoreSum weakPawnTerms(SquareMask own, SquareMask enemy) {
    constexpr Colour Them = Side<Us>::Them;
    const unsigned files = filesOf(own);
    const unsigned isolated = files & ~filesBeside(files);
    const unsigned doubled = filesOf(own & oneAhead<Us>(fillAhead<Us>(own)));
    ScoreSum score = countSquares(isolated) * isolatedFile + countSquares(doubled) * doubledFile;

    const SquareMask supported = beside(fillAhead<Us>(own));
    const SquareMask attacked = oneAhead<Them>(beside(enemy));
    SquareMask backward = own & ~supported & backwardRanks<Us> & ~squaresOnFiles(isolated);
    for (; backward; backward &= backward - 1) {
        const SquareMask path = pathToSupport<Us>(lowestSquare(backward), own);
        if (path & attacked) score += backwardAttacked;
        if (path & enemy) score += backwardBlocked;
    }
    return score;
}

/// The pawns with no enemy pawn ahead on their own or an adjacent file. Own pawns do not matter.
template <Colour Us>
SquareMask passedPawns(SquareMask own, SquareMask enemy) {
    constexpr Colour Them = Side<Us>::Them;
    const SquareMask behindEnemy = oneAhead<Them>(fillAhead<Them>(enemy));
    return own & ~(behindEnemy | beside(behindEnemy));
}

}  // namespace

PawnStructure computePawnStructure(const Board_0x88& board, ScoreSum (&weakPawns)[ColourCount]) {
    const SquareMask white = board.pieceMask[White][Pawn];
    const SquareMask black = board.pieceMask[Black][Pawn];
    weakPawns[White] = weakPawnTerms<White>(white, black);
    weakPawns[Black] = weakPawnTerms<Black>(black, white);
    const unsigned whiteFiles = filesOf(white);
    const unsigned blackFiles = filesOf(black);
    return {{passedPawns<White>(white, black), passedPawns<Black>(black, white)},
            (weakPawns[White] - weakPawns[Black]).pair(),
            static_cast<std::uint8_t>(~(whiteFiles | blackFiles)),
            static_cast<std::uint8_t>(whiteFiles ^ blackFiles)};
}

}  // namespace vatro
