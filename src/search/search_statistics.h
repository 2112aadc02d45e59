// search/search_statistics.h - what a search counts of its own work.
#pragma once

#include "base/counter.h"

namespace vatro {

struct CutoffCounts {
    Counter all;
    Counter onFirstMove;

    void count(bool isFirstMove) {
        ++all;
        if (isFirstMove) ++onFirstMove;
    }
    CutoffCounts& operator+=(const CutoffCounts& other) {
        all += other.all;
        onFirstMove += other.onFirstMove;
        return *this;
    }
};

/// Counters of one thread's search, zero at its start, or their sums over all threads. Other
/// threads may read them while the search runs.
struct SearchStatistics {
    Counter qsNodes;
    CutoffCounts cutoffs;  // outside the quiescence search
    CutoffCounts qsCutoffs;
    Counter ttHits;
    Counter pawnHashHits;

    SearchStatistics& operator+=(const SearchStatistics& other) {
        qsNodes += other.qsNodes;
        cutoffs += other.cutoffs;
        qsCutoffs += other.qsCutoffs;
        ttHits += other.ttHits;
        pawnHashHits += other.pawnHashHits;
        return *this;
    }
};

}  // namespace vatro
