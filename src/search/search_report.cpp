// search/search_report.cpp - what the player reports of a search: the sums over its threads.
#include "search/chess_player.h"

namespace vatro {

std::uint64_t ChessPlayer::sumOverThreads(std::atomic<std::uint64_t> Searcher::*counter) const {
    std::uint64_t sum = 0;
    for (const auto& thread : threadPool) {
        sum += (thread->searcher.*counter).load(std::memory_order_relaxed);
    }
    return sum;
}

void ChessPlayer::printThinking(const RootLine& line) {
    if (!post) return;
    reporter.reportThinking({line, threadPool[0]->searcher.selectiveDepth(),
                             timeControl.searchTime(), sumOverThreads(&Searcher::nodes),
                             sumOverThreads(&Searcher::tbHits), transpositionTable});
}

void ChessPlayer::printStatistics() {
    stopHelpers();  // they may count a few more nodes until they notice
    if (!post) return;
    SearchStatistics counters;
    for (const auto& thread : threadPool) {
        counters += thread->searcher.statistics;
    }
    reporter.reportStatistics({timeControl.searchTime(), sumOverThreads(&Searcher::nodes),
                               sumOverThreads(&Searcher::tbHits), counters,
                               transpositionTable.fillPercentage(),
                               pawnHashTable.fillPercentage()});
}

}  // namespace vatro
