// src/search/root.h - what is known of the root before the first iteration.
#pragma once

#include "eval/scores.h"
#include "search/searcher.h"

namespace vatro {

struct Searcher::RootScan {
    PrincipalVariation best;  // one move, none when there is no legal one
    int score = -MateScore;
    unsigned legalMoves = 0;
    unsigned resolved = 0;  // of them by the tablebases

    bool isResolved() const { return resolved == legalMoves; }
};

}  // namespace vatro
