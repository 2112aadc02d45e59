// eval/taper.h - the blend of middle game and end game by the game phase.
#pragma once

#include "board/score_sum.h"

namespace vatro {

constexpr int FullPhase = 24;  // the pieces of the start position

/// The blend of a pair: all middle game at FullPhase, all end game at 0; truncates toward zero.
constexpr int taper(ScorePair pair, int phase) {
    return (pair.mg * phase + pair.eg * (FullPhase - phase)) / FullPhase;
}
constexpr int taper(ScoreSum sum, int phase) { return taper(sum.pair(), phase); }

}  // namespace vatro
