// engine/winboard_reporter.cpp - wording the reports of the search.
#include "engine/winboard_reporter.h"

#include <string>

#include "base/console.h"
#include "base/text.h"
#include "search/principal_variation.h"
#include "search/time_control.h"

namespace vatro {
namespace {

/// 0 when there is no whole.
std::uint64_t percentage(std::uint64_t part, std::uint64_t whole) {
    return whole ? part * 100 / whole : 0;
}

std::string text(std::uint64_t number) { return std::to_string(number); }

const char* nameOf(TableName table) {
    return table == TableName::PawnHash ? "Pawn hash" : "TT hash";
}

/// "# NAME = cutoffs, NAMEs on 1st move = first (percent%)"
std::string cutoffLine(const char* name, const char* nameOnFirst, const CutoffCounts& cutoffs) {
    return std::string("# ") + name + " = " + text(cutoffs.all) + ", " + nameOnFirst +
           " on 1st move = " + text(cutoffs.onFirstMove) + " (" +
           text(percentage(cutoffs.onFirstMove, cutoffs.all)) + "%)\n";
}

/// Empty for a stop that goes without saying.
std::string stopText(const StopReport& report) {
    const std::string move = ": " + moveToText(report.best);
    const std::string plies = std::to_string(report.matePlies) + " plies";
    switch (report.reason) {
        case StopReason::ForcedMove:
            return "forced move" + move;
        case StopReason::EasyMove:
            return "easy move" + move;
        case StopReason::NoTimeForMore:
            return "probably not enough time left for another iteration";
        case StopReason::ForcedDraw:
            return "forced draw" + move;
        case StopReason::ForcedMate:
            return "forced mate in " + plies + move;
        case StopReason::GettingMated:
            return "getting mated in " + plies + move;
        case StopReason::Timeout:
            return "timeout";
        case StopReason::DepthLimit:
            break;
    }
    return {};
}

}  // namespace

void WinBoardReporter::reportTimePlan(const TimePlan& plan) {
    say(formatted("# movesPerSession=%u timePerSession=%u increment=%u\n", plan.movesPerSession,
                  plan.baseTime, plan.increment) +
        formatted("# ply=%u fullMoveNumber=%u remainingMoves=%u nSessions=%u\n", plan.plyCount,
                  plan.fullMoveNumber, plan.remainingMoves, plan.sessions) +
        formatted("# total=%d elapsed=%d remaining=%d available=%d max=%d\n", plan.total,
                  plan.elapsed, plan.remaining, plan.available, plan.max) +
        formatted("# set maxTime = %d\n", plan.max));
}

void WinBoardReporter::reportExtraTime(std::int32_t timeForMoveCs) {
    say("# out of book: corrected maxTime = " + std::to_string(timeForMoveCs) + '\n');
}

void WinBoardReporter::reportClockLimit(const ClockLimit& limit) {
    say(formatted("# clock holds %d: corrected maxTime = %d\n", limit.held, limit.timeForMove));
}

void WinBoardReporter::reportThinking(const ThinkingReport& report) {
    std::string output = formatted("%u %d %u %llu", report.depth, report.score,
                                   static_cast<std::uint32_t>(report.elapsedCs),
                                   static_cast<unsigned long long>(report.nodes));
    for (unsigned i = 0; i < report.line.length; ++i) {
        output += ' ' + moveToText(report.line.moves[i]);
    }
    write(output + '\n');
}

void WinBoardReporter::reportStop(const StopReport& report) {
    const std::string reason = stopText(report);
    if (!reason.empty()) say("# " + reason + '\n');
}

void WinBoardReporter::reportStatistics(const StatisticsReport& report) {
    const auto time = static_cast<std::uint32_t>(report.elapsedCs);
    const std::uint64_t nodesPerSecond = time ? report.nodes * 100 / time : 0;
    const SearchStatistics& counters = report.counters;
    CutoffCounts allCutoffs = counters.cutoffs;
    allCutoffs += counters.qsCutoffs;
    say("# total nodes = " + text(report.nodes) + ", QS nodes = " + text(counters.qsNodes) + " (" +
        text(percentage(counters.qsNodes, report.nodes)) + "%), time = " + text(time) + ", nps = " +
        text(nodesPerSecond) + '\n' + "# QS checks = 0\n" +  // the quiescence search gives none
        cutoffLine("cutoffs", "cutoffs", counters.cutoffs) +
        cutoffLine("qsCutoffs", "qsCutoffs", counters.qsCutoffs) +
        cutoffLine("allCutoffs", "all cutoffs", allCutoffs) +
        formatted("# ttHashFull%% = %g, ttHashHits = ", report.ttFillPercentage) +
        text(counters.ttHits) + '\n' +
        formatted("# pawnHashFull%% = %g, pawnHashHits = ", report.pawnHashFillPercentage) +
        text(counters.pawnHashHits) + '\n' +  //
        "# tbHits = " + text(report.tbHits) + '\n');
}

void WinBoardReporter::reportBookError(std::string_view error) {
    say("ERROR: " + std::string(error) + '\n');
}

void WinBoardReporter::reportRefusedMove(Move move) {
    const std::string moveText = moveToText(move);
    say(formatted("# hash collision: %5s %s\n", moveText.c_str(), moveText.c_str()));
}

void WinBoardReporter::reportTableSize(TableName table, unsigned megabytes) {
    say(formatted("# new size of %s: %u MB\n", nameOf(table), megabytes));
}

void WinBoardReporter::reportNoMemoryForTable(TableName table, unsigned megabytes) {
    say(formatted("# ERROR: no memory for a %s of %u MB\n", nameOf(table), megabytes));
}

void WinBoardReporter::reportNoThread() { say("# ERROR: no thread for the search\n"); }

void WinBoardReporter::reportCores(const CoresReport& report) {
    say(formatted("# will now use %u cores (requested=%u, current=%u, max=%u)\n", report.granted,
                  report.requested, report.current, report.max));
}

void WinBoardReporter::reportNoMemoryForTablebases() {
    say("# ERROR: no memory for the tablebases\n");
}

void WinBoardReporter::reportTablebaseNotice(std::string_view notice) {
    say("# " + std::string(notice) + '\n');
}

}  // namespace vatro
