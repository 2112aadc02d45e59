// search/search_reporter.h - what the search and the player tell the user, as data.
//
// A front end derives from SearchReporter and words the reports as its protocol wants them. It
// overrides those that the protocol has a place for; the others do nothing.
#pragma once

#include <cstdint>
#include <string_view>

#include "board/move_picker.h"
#include "search/interfaces.h"
#include "search/search_statistics.h"

namespace vatro {

struct ClockLimit;
struct TimePlan;
class TranspositionTable;

/// A new best line. The counts are sums over all threads.
struct ThinkingReport {
    RootLine root;
    unsigned selectiveDepth;  // plies of the longest line that has been looked at
    std::int32_t elapsedCs;   // since the search began
    std::uint64_t nodes;
    std::uint64_t tbHits;
    const TranspositionTable& table;  // for its fill, which takes a sample: ask only to show it
};

/// A move of the root that is about to be searched.
struct RootMoveReport {
    unsigned depth;  // of the iteration
    Move move;
    unsigned number;         // 1: the first of this iteration
    std::int32_t elapsedCs;  // since the search began
};

/// The work of a search that is about to end. The counts are sums over all threads.
struct StatisticsReport {
    std::int32_t elapsedCs;  // since the search began
    std::uint64_t nodes;
    std::uint64_t tbHits;
    SearchStatistics counters;
    double ttFillPercentage;
    double pawnHashFillPercentage;
};

/// Why a search ends, other than by order.
enum class StopReason {
    ForcedMove,
    EasyMove,       // the best move stands out, and part of the time has been used
    NoTimeForMore,  // another iteration would hardly come to an end
    ForcedDraw,     // the best that can be had
    ForcedMate,
    GettingMated,
    DepthLimit,
    Timeout,  // in the middle of an iteration
};

struct StopReport {
    StopReason reason;
    Move best = NoMove;  // of the last iteration; NoMove after a timeout
    int matePlies = 0;   // up to the mate, where the reason is one
};

enum class TableName { TranspositionTable, PawnHash };

struct CoresReport {
    unsigned granted;  // from the next search on
    unsigned requested;
    unsigned current;  // threads that exist
    unsigned max;      // that the machine has
};

class SearchReporter : public RefusedMoveListener {
  public:
    virtual ~SearchReporter() = default;

    // --- While a search runs; by its thread 0 ---

    virtual void reportTimePlan(const TimePlan& /*plan*/) {}
    /// The first search of a game has been given more time, in centiseconds.
    virtual void reportExtraTime(std::int32_t /*timeForMoveCs*/) {}
    /// The clock holds less than the plan allows for. Also by the main thread, when it is told the
    /// time during a search.
    virtual void reportClockLimit(const ClockLimit& /*limit*/) {}
    virtual void reportThinking(const ThinkingReport& /*report*/) {}
    virtual void reportRootMove(const RootMoveReport& /*report*/) {}
    virtual void reportStop(const StopReport& /*report*/) {}
    virtual void reportStatistics(const StatisticsReport& /*report*/) {}
    /// The book could not be read; the system's text.
    virtual void reportBookError(std::string_view /*error*/) {}

    /// A table has given a move of another position. By any search thread.
    void reportRefusedMove(Move /*move*/) override {}

    // --- When a setting is applied; by the main thread ---

    virtual void reportTableSize(TableName /*table*/, unsigned /*megabytes*/) {}
    virtual void reportNoMemoryForTable(TableName /*table*/, unsigned /*megabytes*/) {}
    /// Not even one search thread can be started.
    virtual void reportNoThread() {}
    virtual void reportCores(const CoresReport& /*report*/) {}
    virtual void reportNoMemoryForTablebases() {}
    /// One line of text about tablebase files that could not be used.
    virtual void reportTablebaseNotice(std::string_view /*notice*/) {}
};

}  // namespace vatro
