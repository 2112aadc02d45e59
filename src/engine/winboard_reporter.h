// engine/winboard_reporter.h - the reports of the search as lines of the WinBoard protocol.
//
// A thinking line is the protocol's own; all others are comments.
#pragma once

#include "search/search_reporter.h"

namespace vatro {

class WinBoardReporter final : public SearchReporter {
  public:
    void reportTimePlan(const TimePlan& plan) override;
    void reportExtraTime(std::int32_t timeForMoveCs) override;
    void reportClockLimit(const ClockLimit& limit) override;
    void reportThinking(const ThinkingReport& report) override;
    void reportStop(const StopReport& report) override;
    void reportStatistics(const StatisticsReport& report) override;
    void reportBookError(std::string_view error) override;
    void reportRefusedMove(Move move) override;

    void reportTableSize(TableName table, unsigned megabytes) override;
    void reportNoMemoryForTable(TableName table, unsigned megabytes) override;
    void reportNoThread() override;
    void reportCores(const CoresReport& report) override;
    void reportNoMemoryForTablebases() override;
    void reportTablebaseNotice(std::string_view notice) override;
};

}  // namespace vatro
