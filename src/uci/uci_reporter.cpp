// uci/uci_reporter.cpp - info lines.
#include "uci/uci_reporter.h"

#include <string>

#include "base/console.h"
#include "base/text.h"
#include "eval/scores.h"
#include "search/chess_player.h"

namespace vatro {
namespace {

/// Moves up to the mate, negative for the side that is mated; 0 when the score is none of a mate.
int movesToMate(int score) {
    if (score > MateThreshold) return (MateScore - score + 1) / 2;
    if (score < -MateThreshold) return -(MateScore + score + 1) / 2;
    return 0;
}

std::string_view boundText(Bound bound) {
    if (bound == Bound::LowerBound) return " lowerbound";
    if (bound == Bound::UpperBound) return " upperbound";
    return "";
}

/// Nodes, speed, time and tablebase hits; the time in milliseconds.
std::string workText(std::uint64_t nodes, std::int32_t elapsedCs, std::uint64_t tbHits) {
    const std::uint64_t time = elapsedCs > 0 ? static_cast<std::uint64_t>(elapsedCs) : 0;
    std::string text = " nodes " + std::to_string(nodes);
    if (time > 0) text += " nps " + std::to_string(nodes * 100 / time);
    return text + " tbhits " + std::to_string(tbHits) + " time " + std::to_string(time * 10);
}

std::string fillText(double percentage) {
    return " hashfull " + std::to_string(static_cast<int>(percentage * 10));
}

const char* nameOf(TableName table) { return table == TableName::PawnHash ? "PawnHash" : "Hash"; }

}  // namespace

void sayInfo(std::string_view text) { say("info string " + std::string(text) + '\n'); }

std::string uciScore(int score) {
    const int moves = movesToMate(score);
    if (moves == 0 && score < -MateThreshold) return "mate 0";  // mated already
    return moves != 0 ? "mate " + std::to_string(moves) : "cp " + std::to_string(score);
}

void UciReporter::stopAtMate(unsigned moves, ChessPlayer& searchingPlayer) {
    mateMoves = moves;
    player = &searchingPlayer;
}

void UciReporter::reportTimePlan(const TimePlan& plan) {
    if (debug) sayInfo(formatted("time for the move %d0 ms of %d0 ms", plan.max, plan.remaining));
}

void UciReporter::reportExtraTime(std::int32_t timeForMoveCs) {
    if (debug) sayInfo(formatted("out of book: time for the move %d0 ms", timeForMoveCs));
}

void UciReporter::reportClockLimit(const ClockLimit& limit) {
    if (debug) {
        sayInfo(formatted("clock holds %d0 ms: time for the move %d0 ms", limit.held,
                          limit.timeForMove));
    }
}

void UciReporter::reportThinking(const ThinkingReport& report) {
    const RootLine& root = report.root;
    std::string text = formatted("info depth %u seldepth %u multipv %u score ", root.depth,
                                 report.selectiveDepth, root.rank);
    text += uciScore(root.score);
    text += boundText(root.bound);
    text += workText(report.nodes, report.elapsedCs, report.tbHits);
    text += fillText(report.table.fillPercentage());
    if (!root.line.empty()) text += " pv";
    for (unsigned i = 0; i < root.line.length; ++i) {
        text += ' ' + moveToText(root.line.moves[i]);
    }
    say(text + '\n');
    const int moves = movesToMate(root.score);
    if (root.bound == Bound::Exact && moves != 0 && mateMoves != 0 &&
        static_cast<unsigned>(moves > 0 ? moves : -moves) <= mateMoves) {
        player->finishSearch();
    }
}

void UciReporter::reportRootMove(const RootMoveReport& report) {
    constexpr std::int32_t QuietTime = 100;  // centiseconds; before, the lines would only flicker
    if (report.elapsedCs < QuietTime) return;
    say(formatted("info depth %u currmove %s currmovenumber %u\n", report.depth,
                  moveToText(report.move).c_str(), report.number));
}

void UciReporter::reportStatistics(const StatisticsReport& report) {
    say("info" + workText(report.nodes, report.elapsedCs, report.tbHits) +
        fillText(report.ttFillPercentage) + '\n');
}

void UciReporter::reportBookError(std::string_view error) { sayInfo(error); }

void UciReporter::reportTableSize(TableName table, unsigned megabytes) {
    if (debug) sayInfo(formatted("%s: %u MB", nameOf(table), megabytes));
}

void UciReporter::reportNoMemoryForTable(TableName table, unsigned megabytes) {
    sayInfo(formatted("no memory for a %s of %u MB", nameOf(table), megabytes));
}

void UciReporter::reportNoThread() { sayInfo("no thread for the search"); }

void UciReporter::reportCores(const CoresReport& report) {
    if (report.granted == report.requested) return;
    sayInfo(formatted("%u threads instead of %u", report.granted, report.requested));
}

void UciReporter::reportNoMemoryForTablebases() { sayInfo("no memory for the tablebases"); }

void UciReporter::reportTablebaseNotice(std::string_view notice) { sayInfo(notice); }

}  // namespace vatro
