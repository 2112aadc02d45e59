// search/mate_score.h - mate scores on their way into a table and out of it.
//
// A search counts the plies to a mate from its root. A table, of search results or of endings,
// counts them from the position itself, so that an entry serves at any distance from any root.
#pragma once

#include "eval/scores.h"

namespace vatro {

/// The score counts the plies to a mate, by either side.
constexpr bool isMateScore(int score) { return score > MateThreshold || score < -MateThreshold; }

/// A score of the search at `height` as a table holds it.
constexpr int scoreForTable(int score, int height) {
    if (!isMateScore(score)) return score;
    return score > 0 ? score + height : score - height;
}

/// A table's score as the search at `height` counts it.
constexpr int scoreFromTable(int score, int height) {
    if (!isMateScore(score)) return score;
    return score > 0 ? score - height : score + height;
}

}  // namespace vatro
