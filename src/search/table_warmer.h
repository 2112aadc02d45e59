// search/table_warmer.h - getting the memory of the hash tables before a search needs it.
//
// The system hands out a page, zeroed, when it is first touched. For tables of 288 MB that takes
// the better part of a second, which the first search of a process would pay for.
#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>

#include "base/system_thread.h"
#include "eval/pawn_hash.h"
#include "search/transposition_table.h"

namespace vatro {

/// Touches every page of both tables on a thread of its own. Without such a thread the searches
/// touch them, as they come to them.
class TableWarmer {
  public:
    /// The tables outlive the warmer.
    TableWarmer(TranspositionTable& table, PawnHashTable& pawnTable)
        : transpositionTable(table), pawnHash(pawnTable) {}
    TableWarmer(const TableWarmer&) = delete;
    TableWarmer& operator=(const TableWarmer&) = delete;
    ~TableWarmer() { cancel(); }

    /// Begins with tables that have just been made. Main thread, like `cancel`.
    void start();
    /// Returns when the tables are no longer touched, so that their memory may go. Takes no longer
    /// than a page.
    void cancel();
    /// Returns when all pages are there. Main thread, while the warmer is not paused.
    void waitUntilComplete() { thread.join(); }
    /// True when all pages are there. Any thread.
    bool isComplete() const { return complete; }
    /// The same for those who keep looking.
    const std::atomic<bool>& completion() const { return complete; }

    /// Leaves the processor to a search, from the next page on; or goes on. Any thread.
    void pause() { setPaused(true); }
    void resume() { setPaused(false); }

  private:
    void run();
    template <typename Table>
    bool touchAll(Table& table);
    bool mayGoOn();
    void setPaused(bool value);

    TranspositionTable& transpositionTable;
    PawnHashTable& pawnHash;
    std::mutex mutex;
    std::condition_variable changed;     // of the two flags
    std::atomic<bool> paused{false};     // written under the mutex
    std::atomic<bool> cancelled{false};  // the same
    std::atomic<bool> complete{false};   // written by the warmer's thread, or while it is not there
    SystemThread thread;
};

}  // namespace vatro
