// src/search/search_output.cpp - thinking lines and the statistics of a search.
#include "board/console.h"
#include "search/chess_player.h"

namespace vatro {
namespace {

std::uint64_t percentage(std::uint64_t part, std::uint64_t whole) {
    return whole ? part * 100 / whole : 0;
}

SearchStatistics& operator+=(SearchStatistics& sum, const SearchStatistics& other) {
    sum.qsNodes += other.qsNodes;
    sum.qsChecks += other.qsChecks;
    sum.cutoffs += other.cutoffs;
    sum.cutoffsFirst += other.cutoffsFirst;
    sum.qsCutoffs += other.qsCutoffs;
    sum.qsCutoffsFirst += other.qsCutoffsFirst;
    sum.ttHits += other.ttHits;
    sum.tbHits += other.tbHits;
    sum.pawnHashHits += other.pawnHashHits;
    return sum;
}

std::string text(std::uint64_t number) { return std::to_string(number); }

/// "# NAME = cutoffs, NAMEs on 1st move = first (percent%)"
std::string cutoffLine(const char* name,
                       const char* nameOnFirst,
                       std::uint64_t cutoffs,
                       std::uint64_t first) {
    return std::string("# ") + name + " = " + text(cutoffs) + ", " + nameOnFirst +
           " on 1st move = " + text(first) + " (" + text(percentage(first, cutoffs)) + "%)\n";
}

}  // namespace

void ChessPlayer::printThinking(unsigned depth, int score, const PrincipalVariation& line) {
    if (!post) return;
    std::uint64_t nodes = 0;
    for (const auto& thread : threadPool) {
        nodes += thread->searcher.nodes.load(std::memory_order_relaxed);
    }
    std::string output = formatted("%u %d %u %llu", depth, score,
                                   static_cast<std::uint32_t>(timeControl.searchTime()),
                                   static_cast<unsigned long long>(nodes));
    for (unsigned i = 0; i < line.length; ++i) {
        output += ' ' + moveToText(line.moves[i]);
    }
    write(output + '\n');
}

void ChessPlayer::printStatistics() {
    stopHelpers();  // their counters are their own until they are idle
    if (!post) return;
    std::uint64_t nodes = 0;
    SearchStatistics sum;
    for (const auto& thread : threadPool) {
        nodes += thread->searcher.nodes.load(std::memory_order_relaxed);
        sum += thread->searcher.statistics;
    }
    const auto time = static_cast<std::uint32_t>(timeControl.searchTime());
    say("# total nodes = " + text(nodes) + ", QS nodes = " + text(sum.qsNodes) + " (" +
        text(percentage(sum.qsNodes, nodes)) + "%), time = " + text(time) +
        ", nps = " + text(percentage(nodes, time)) + '\n' +  //
        "# QS checks = " + text(sum.qsChecks) + '\n' +
        cutoffLine("cutoffs", "cutoffs", sum.cutoffs, sum.cutoffsFirst) +
        cutoffLine("qsCutoffs", "qsCutoffs", sum.qsCutoffs, sum.qsCutoffsFirst) +
        cutoffLine("allCutoffs", "all cutoffs", sum.cutoffs + sum.qsCutoffs,
                   sum.cutoffsFirst + sum.qsCutoffsFirst) +
        formatted("# ttHashFull%% = %g, ttHashHits = ", transpositionTable.fillPercentage()) +
        text(sum.ttHits) + '\n' +
        formatted("# pawnHashFull%% = %g, pawnHashHits = ", pawnHashTable.fillPercentage()) +
        text(sum.pawnHashHits) + '\n' +  //
        "# tbHits = " + text(sum.tbHits) + '\n');
}

}  // namespace vatro
