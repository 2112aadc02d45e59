// search/node_window.h - the window of a node, and what a score says when it is seen through one.
#pragma once

#include <cstdint>

namespace vatro {

/// What a node is asked: its score if that lies between `alpha` and `beta`, else on which side of
/// them it lies.
struct NodeWindow {
    int alpha;
    int beta;
    int height;  // plies above the root
    int depth;   // plies left to search

    bool isEmpty() const { return beta <= alpha; }
    /// No room between alpha and beta: the answer is only ever "not more" or "not less".
    bool isNull() const { return alpha + 1 == beta; }

    /// The part `from` .. `to` of the window for a child, as its side to move sees it.
    NodeWindow forChild(int from, int to, int childDepth) const {
        return {-to, -from, height + 1, childDepth};
    }
    /// The same window with another depth left.
    NodeWindow withDepth(int otherDepth) const { return {alpha, beta, height, otherDepth}; }
    /// Asks only whether the score reaches beta.
    NodeWindow atBeta() const { return {beta - 1, beta, height, depth}; }
};

/// The lowest and highest score that are still possible at a node.
struct ScoreLimits {
    int lowest;
    int highest;
};

/// What a stored score is to the true one.
enum class Bound : std::uint16_t { Exact = 1, LowerBound = 2, UpperBound = 3 };

/// What a search of the window has proved with the score. One at the limit of what is possible is
/// exact even outside the window.
inline Bound boundOf(int score, const NodeWindow& window, const ScoreLimits& limits) {
    if (score >= window.beta) return score >= limits.highest ? Bound::Exact : Bound::LowerBound;
    if (score <= window.alpha) return score <= limits.lowest ? Bound::Exact : Bound::UpperBound;
    return Bound::Exact;
}

/// Whether a score that is known with this bound answers what the window asks.
inline bool answers(const NodeWindow& window, int score, Bound bound) {
    switch (bound) {
        case Bound::Exact:
            return true;
        case Bound::LowerBound:
            return score >= window.beta;
        case Bound::UpperBound:
            return score <= window.alpha;
    }
    return false;
}

}  // namespace vatro
