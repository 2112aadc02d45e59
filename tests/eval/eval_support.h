// tests/eval/eval_support.h - evaluating with a pawn hash of one's own.
#pragma once

#include <cstdint>
#include <string>

#include "eval/evaluate.h"
#include "eval/scores.h"
#include "tests/support.h"

namespace vatro {

constexpr int OutOfReach = AbortScore;  // a bound that no score and no lazy margin crosses

struct Evaluator {
    Evaluator() { EXPECT_TRUE(pawnHash.resize(1)); }

    int operator()(const Board_0x88& board, int alpha = -OutOfReach, int beta = OutOfReach) {
        return evaluate(board, memory, alpha, beta);
    }
    /// The same score, with nothing taken from a position met before but its pawns.
    int allTerms(const Board_0x88& board) {
        EvalBreakdown breakdown;
        return evaluateWithBreakdown(board, memory, breakdown);
    }
    int operator()(const std::string& fen) { return (*this)(*boardOf(fen)); }
    /// Material, piece-square values and the bonus of the side to move; full scale only.
    int lazyScore(const Board_0x88& board) { return (*this)(board, OutOfReach, OutOfReach) - 200; }

    PawnHashTable pawnHash;
    Counter hits;
    EvalMemory memory{pawnHash, hits};
};

/// Terms compare as pairs and print as such when they differ.
inline std::pair<int, int> pairOf(ScoreSum sum) { return {sum.pair().mg, sum.pair().eg}; }
using Pair = std::pair<int, int>;

}  // namespace vatro
