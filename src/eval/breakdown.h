// eval/breakdown.h - where the evaluation notes its terms when they are to be printed.
//
// The evaluation is one routine with the type of the breakdown as its parameter: with NoBreakdown
// every note is an empty function, so that the search pays nothing for the printed table.
#pragma once

#include "board/score_sum.h"
#include "board/types.h"

namespace vatro {

enum class EvalRow {
    Material,  // in White's columns, as the difference
    PieceSquare,
    PassedPawns,
    WeakPawns,      // when the pawn structure was computed in this call
    PawnStructure,  // when it came from the pawn hash: in White's columns, as the difference
    Knights,
    Bishops,
    Rooks,
    Queens,
    KingSafety,
    KingTropism,
    SideToMove,
    EdgeDistance,  // the last three: only without pawns
    KingDistance,
    SafeCorner,
    Count
};

/// The terms of one evaluation, by row and colour.
struct EvalBreakdown {
    static constexpr bool WantsAllTerms = true;

    void add(EvalRow row, Colour colour, ScorePair term) {
        terms[static_cast<int>(row)][colour] += term;
    }
    void add(EvalRow row, Colour colour, ScoreSum term) { add(row, colour, term.pair()); }

    ScorePair terms[static_cast<int>(EvalRow::Count)][ColourCount];
};

struct NoBreakdown {
    static constexpr bool WantsAllTerms = false;

    void add(EvalRow, Colour, ScorePair) {}
    void add(EvalRow, Colour, ScoreSum) {}
};

}  // namespace vatro
