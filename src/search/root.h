// search/root.h - what the iterations and the search of the root share.
#pragma once

#include "eval/scores.h"
#include "search/searcher.h"

namespace vatro {

/// The first iteration that may end the search for reasons of time; tuned.
constexpr int EarlyStopDepth = 6;

/// What is known of the root before the first iteration.
struct Searcher::RootScan {
    PrincipalVariation best;  // one move, none when there is no legal one
    int score = -MateScore;
    MoveList moves;  // the legal ones that the limits allow
    unsigned resolved =
        0;  // those of them whose score the tablebases know; all scores are set then

    bool isResolved() const { return resolved == moves.count; }
};

}  // namespace vatro
