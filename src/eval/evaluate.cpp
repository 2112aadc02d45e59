// eval/evaluate.cpp - the order of the evaluation, from material to the final score.
//
// Every term is a pair, summed by colour. Each sum is tapered, and so truncated, by itself: a term
// that moves from one sum to another changes scores.
#include "eval/evaluate.h"

#include <algorithm>

#include "board/side.h"
#include "eval/king_safety.h"
#include "eval/passed_pawns.h"
#include "eval/pawn_structure.h"
#include "eval/pawnless.h"
#include "eval/piece_terms.h"
#include "eval/scores.h"

namespace vatro {
namespace {

// Tuned; no derivation.
constexpr ScorePair sideToMoveBonus{FullPhase, 0};  // tapers to the phase itself
constexpr int PositionalLimit = 200;

template <typename Breakdown>
PawnStructure findPawnStructure(const Board_0x88& board, EvalMemory& memory, Breakdown& breakdown) {
    const Key pawnKey = board.record().pawnKey;
    PawnStructure pawns;
    if (memory.pawnHash.probe(pawnKey, pawns)) [[likely]] {
        ++memory.pawnHashHits;
        breakdown.add(EvalRow::PawnStructure, White, pawns.score);
        return pawns;
    }
    ScoreSum weakPawns[ColourCount];
    pawns = computePawnStructure(board, weakPawns);
    memory.pawnHash.store(pawnKey, pawns);
    for (const Colour colour : {White, Black}) {
        breakdown.add(EvalRow::WeakPawns, colour, weakPawns[colour]);
    }
    return pawns;
}

/// The terms of one colour that are tapered together.
template <Colour Us, typename Breakdown>
ScoreSum positionalTerms(const Board_0x88& board,
                         const PawnStructure& pawns,
                         Breakdown& breakdown) {
    const ScoreSum pieces = pieceTerms<Us>(board, pawns, breakdown);
    const ScoreSum passed = passedPawnTerms<Us>(board, pawns.passed[Us]);
    const ScoreSum safety = kingSafetyTerms<Us>(board, pawns.openFiles);
    breakdown.add(EvalRow::PassedPawns, Us, passed);
    breakdown.add(EvalRow::KingSafety, Us, safety);
    return pieces + passed + safety;
}

/// White's lead in all that the lazy cut leaves out. Not inlined: its many values would spill
/// registers on the path that ends at the cut (22 ns inlined, 16 ns not).
template <typename Breakdown>
[[gnu::noinline]] int positionalLead(const Board_0x88& board,
                                     int phase,
                                     EvalMemory& memory,
                                     Breakdown& breakdown) {
    const PawnStructure pawns = findPawnStructure(board, memory, breakdown);
    // The pawn hash is asked all the same: its hits are counted, and shown.
    const Key key = board.record().key;
    if constexpr (!Breakdown::WantsAllTerms) {
        if (const std::optional<int> known = memory.leads.find(key)) return *known;
    }
    const ScoreSum white = positionalTerms<White>(board, pawns, breakdown);
    const ScoreSum black = positionalTerms<Black>(board, pawns, breakdown);
    const int lead = taper(white, phase) + taper(pawns.score, phase) - taper(black, phase);
    memory.leads.store(key, lead);
    return lead;
}

template <typename Breakdown>
int evaluatePosition(
    const Board_0x88& board, EvalMemory& memory, int alpha, int beta, Breakdown& breakdown) {
    // 1. Material, and whether anybody can win at all.
    const MaterialInfo& material = memory.materials.find(board);
    const int scale = scaleFactor(board, material);
    if (scale == 0) return DrawScore;
    // 2. Without pawns other things count.
    if (board.count(White, Pawn) + board.count(Black, Pawn) == 0) {
        return pawnlessEvaluation(board, material, breakdown);
    }

    // 3. Material and piece-square values, from the point of view of the side to move.
    const Colour mover = board.toMove();
    const int phase = material.phase;
    const auto forMover = [mover](int whiteLead) {
        return mover == White ? whiteLead : -whiteLead;
    };
    const int base =
        taper(board.pstScore[White], phase) + material.lead - taper(board.pstScore[Black], phase);
    const int lazy = forMover(base) + phase;
    breakdown.add(EvalRow::Material, White, material.material);
    breakdown.add(EvalRow::PieceSquare, White, board.pstScore[White]);
    breakdown.add(EvalRow::PieceSquare, Black, board.pstScore[Black]);
    breakdown.add(EvalRow::SideToMove, mover, sideToMoveBonus);

    // 4. What follows is worth at most PositionalLimit, perhaps too little to reach the window.
    if (scale == FullScale && material.canWin[White] && material.canWin[Black]) {
        if (lazy + PositionalLimit <= alpha) return lazy + PositionalLimit;
        if (lazy - PositionalLimit >= beta) return lazy - PositionalLimit;
    }

    // 5. Pawns, and the terms of both colours.
    const int lead = positionalLead(board, phase, memory, breakdown);
    int total = lazy + std::clamp(forMover(lead), -PositionalLimit, PositionalLimit);

    // 6. Who cannot win is never ahead.
    if (total > 0 ? !material.canWin[mover] : !material.canWin[~mover]) total = 0;
    return scale == FullScale ? total : scale * total / FullScale;
}

}  // namespace

int evaluate(const Board_0x88& board, EvalMemory& memory, int alpha, int beta) {
    NoBreakdown none;
    return evaluatePosition(board, memory, alpha, beta, none);
}

int evaluateWithBreakdown(const Board_0x88& board, EvalMemory& memory, EvalBreakdown& breakdown) {
    return evaluatePosition(board, memory, -MateScore, MateScore, breakdown);
}

}  // namespace vatro
