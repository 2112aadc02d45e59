// eval/scores.h - the scale of scores, shared by the evaluation and the search.
//
// A score is in centipawns from the point of view of the side to move.
#pragma once

namespace vatro {

/// A side that is mated n plies from the root scores n - MateScore; no evaluation comes near it.
constexpr int MateScore = 32000;
/// Scores beyond it, on either side of zero, count the plies to a mate.
constexpr int MateThreshold = 20000;
/// What an interrupted search returns. Outside every window, never stored, does not fit 16 bits.
constexpr int AbortScore = 40000;
constexpr int DrawScore = 0;

}  // namespace vatro
