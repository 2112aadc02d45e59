// uci/uci_reporter.h - words the reports of search and player as UCI wants them.
#pragma once

#include <atomic>

#include "search/search_reporter.h"

namespace vatro {

class ChessPlayer;

class UciReporter final : public SearchReporter {
  public:
    /// Lets the next search end when it finds a mate in so many moves, for either side; 0: never.
    /// Not during a search.
    void stopAtMate(unsigned moves, ChessPlayer& searchingPlayer);
    /// Whether plans and reasons are told, too. Any thread.
    void setDebug(bool value) { debug = value; }

    void reportTimePlan(const TimePlan& plan) override;
    void reportExtraTime(std::int32_t timeForMoveCs) override;
    void reportClockLimit(const ClockLimit& limit) override;
    void reportThinking(const ThinkingReport& report) override;
    void reportRootMove(const RootMoveReport& report) override;
    void reportStatistics(const StatisticsReport& report) override;
    void reportBookError(std::string_view error) override;
    void reportTableSize(TableName table, unsigned megabytes) override;
    void reportNoMemoryForTable(TableName table, unsigned megabytes) override;
    void reportNoThread() override;
    void reportCores(const CoresReport& report) override;
    void reportNoMemoryForTablebases() override;
    void reportTablebaseNotice(std::string_view notice) override;

  private:
    std::atomic<bool> debug{false};
    unsigned mateMoves = 0;
    ChessPlayer* player = nullptr;
};

/// A line "info string ..." for the user.
void sayInfo(std::string_view text);

/// The score in the protocol's words: "cp 31", "mate 2", "mate -1".
std::string uciScore(int score);

}  // namespace vatro
