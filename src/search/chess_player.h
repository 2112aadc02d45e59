// search/chess_player.h - the player: the game board, the tables, the book and the threads.
//
// The main thread prepares the player and starts its search; search thread 0 decides on the move
// and hands it to the engine. Settings that a command may change during a search are atomic or
// guarded by their owner.
#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "base/random.h"
#include "board/game.h"
#include "book/polyglot_book.h"
#include "egtb/tablebases.h"
#include "eval/pawn_hash.h"
#include "search/interfaces.h"
#include "search/search_reporter.h"
#include "search/search_thread.h"
#include "search/table_warmer.h"
#include "search/time_control.h"
#include "search/transposition_table.h"

namespace vatro {

/// How a game has ended.
enum class GameResult { Open, WhiteMates, BlackMates, Stalemate, InsufficientMaterial };

class ChessPlayer final : public SearchInterface {
  public:
    /// All three outlive the player. Without an engine the moves that are found go nowhere.
    ChessPlayer(TimeControl& control, SearchReporter& reports, EngineInterface* engineToTell);
    ~ChessPlayer() override;

    // --- Main thread ---

    /// Makes tables and threads match the settings; `reset` empties the tables. Does nothing while
    /// a search runs: the next preparation will. Makes do with smaller tables at the start, and
    /// with fewer threads, when the system has no more.
    void preparePlayer(bool reset);
    /// Prepares without `reset`, and returns when the system has handed out the tables' memory: the
    /// first search would else wait for it. Does nothing while a search runs.
    void prepareFully();
    /// Whether the last preparation had the memory and the threads without which there is no search
    /// (reported).
    bool isReady() const;
    /// Sets the number of threads for the next preparation, at most `maxCores`, and reports it.
    void setCores(unsigned requested);
    /// Resizes a table, at the next preparation if a search runs. False when there is no memory for
    /// it (reported); the table and the setting stay then.
    bool setTTHashSize(unsigned megabytes);
    bool setPawnHashSize(unsigned megabytes);
    /// (Re)initialises the tablebases from `gtbPath`, or from a new path. False when there is no
    /// memory for their cache (reported); the tablebases are then closed.
    bool initTablebases();
    bool initTablebases(const std::string& path);
    /// The same with another size of the cache. Without memory for it the setting stays, and the
    /// tablebases with it.
    bool setTablebaseCacheSize(unsigned megabytes);
    /// Reports what has gone wrong with table files since the last call.
    void reportTablebaseFaults();

    /// Sets what is left on the engine's clock, in centiseconds. A running search may get shorter.
    void setTimeLeft(std::int32_t left);

    /// Starts the search of the game's position on all threads and returns.
    void startSearch();
    /// Makes a running search end with the best move that it has found.
    void finishSearch();
    /// Puts a running search without limits against the clock, which starts to run.
    void startClock();
    /// Ends a running search, whose result is discarded. The caller holds no lock that
    /// EngineInterface::makeEngineMove takes.
    void stopSearch();
    /// Marks the result of a running search as not to be played. Called under the lock that
    /// EngineInterface::makeEngineMove takes before it asks resultIsDiscarded: so no move is made
    /// after the mark, however long the search takes to end.
    void discardResult();
    bool resultIsDiscarded() const;
    bool isSearching() const;
    void waitUntilIdle();

    /// Whether, and how, the rules have ended the game. A draw that has to be claimed does not.
    GameResult gameResult();
    /// True when the move leads to a position that the opponent may claim a draw in.
    bool shouldOfferDraw(Move move);

    // --- Search thread 0 (SearchInterface) ---

    bool timeout() override;
    void printThinking(const RootLine& line) override;
    void printStatistics() override;

    TimeControl& timeControl;
    Game game;

    // Ranges and names of the settings: shell/settings.cpp.
    static constexpr unsigned DefaultTTHashSizeMB = 256;
    static constexpr unsigned DefaultPawnHashSizeMB = 32;
    static constexpr unsigned DefaultTablebaseCacheMB = 16;
    static constexpr char DefaultTablebasePath[] = "C:/gtb";
    static constexpr unsigned DefaultCores = 1;
    static constexpr std::size_t MaxPathLength = 255;

    unsigned ttHashSizeMB = DefaultTTHashSizeMB;
    unsigned pawnHashSizeMB = DefaultPawnHashSizeMB;
    unsigned gtbCacheSizeMB = DefaultTablebaseCacheMB;
    std::string gtbPath = DefaultTablebasePath;  // at most MaxPathLength characters

    std::atomic<bool> useBook{true};
    std::atomic<bool> randomMoves{false};  // play random moves instead of searching
    std::atomic<bool> post{true};          // whether thinking lines and statistics are reported
    bool outOfBook = false;  // the game has left the book; search thread 0's in a search
    SearchResult result;     // of the latest search; the same
    SearchLimits limits;     // of the next search; not to be changed during one

    unsigned maxCores;  // hardware threads, at least 1
    unsigned requestedCores = DefaultCores;
    unsigned threadCount() const { return static_cast<unsigned>(threadPool.size()); }

    PolyglotBook book;
    TranspositionTable transpositionTable;
    PawnHashTable pawnHashTable;
    bool tablesUsed = false;  // since they were last empty; the main thread's
    TablebaseState tablebases;

  private:
    /// Makes a table anew for `setting` megabytes and reports its size. Without memory for another
    /// one a table of that size is emptied, one of another size stays and the setting goes back to
    /// it; a first table shrinks until it fits.
    bool emptyTables();
    template <typename Table>
    void recreate(Table& table, TableName name, unsigned& setting, unsigned& allocatedFor);
    void rebuildPool();

    static void think(unsigned threadIndex, void* player);
    void thinkAndMove();
    SearchResult chooseMove();
    void giveTimeOutOfBook();
    void keepWithinClock();
    void stopHelpers();
    std::uint64_t sumOverThreads(std::atomic<std::uint64_t> Searcher::*counter) const;

    SearchReporter& reporter;
    EngineInterface* engine;
    unsigned ttAllocatedFor = 0;  // the size setting that the table was made for; 0: no table
    unsigned pawnHashAllocatedFor = 0;
    Random random = Random::seededByClock();  // search thread 0's
    TableWarmer warmer{transpositionTable, pawnHashTable};
    std::vector<std::unique_ptr<SearchThread>> threadPool;
};

}  // namespace vatro
