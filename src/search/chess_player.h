// src/search/chess_player.h - the player: the game board, the tables, the book and the threads.
//
// The main thread prepares the player and starts its search; search thread 0 decides on the move
// and hands it to the engine. Settings that a command may change during a search are atomic or
// guarded by their owner.
#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "board/game.h"
#include "book/polyglot_book.h"
#include "egtb/tablebases.h"
#include "eval/pawn_hash.h"
#include "search/interfaces.h"
#include "search/search_thread.h"
#include "search/time_control.h"
#include "search/transposition_table.h"

namespace vatro {

class ChessPlayer final : public SearchInterface {
  public:
    /// The engine and its time control outlive the player. `engineToTell` may be null in tests.
    ChessPlayer(TimeControl& control, EngineInterface* engineToTell);
    ~ChessPlayer() override;

    // --- Main thread ---

    /// Makes tables and threads match the settings; `reset` empties the tables. Does nothing while
    /// a search runs: the next preparation will.
    void preparePlayer(bool reset);
    /// Sets the number of threads for the next preparation, at most `maxCores`, and reports it.
    void setCores(unsigned requested);
    /// Resizes a table, at the next preparation if a search runs. False when there is no memory for
    /// it (reported); the table and the setting stay then.
    bool setTTHashSize(unsigned megabytes);
    bool setPawnHashSize(unsigned megabytes);
    /// (Re)initialises the tablebases from `gtbPath`, or from a new path.
    void initTablebases();
    void initTablebases(const std::string& path);

    /// Starts the search of the game's position on all threads and returns.
    void startSearch();
    /// Ends a running search, whose result is discarded. The caller holds no lock that
    /// EngineInterface::makeEngineMove takes.
    void stopSearch();
    bool isSearching() const;
    void waitUntilIdle();

    /// True when the game has ended; prints its result line.
    bool checkGameResult();
    /// True when the move leads to a position that the opponent may claim a draw in.
    bool shouldOfferDraw(Move move);

    // --- Search thread 0 (SearchInterface) ---

    bool timeout() override;
    void printThinking(unsigned depth, int score, const PrincipalVariation& line) override;
    void printStatistics() override;

    TimeControl& timeControl;
    Game game;

    unsigned ttHashSizeMB = 256;     // 1 to 2048
    unsigned pawnHashSizeMB = 32;    // 1 to 2048
    unsigned gtbCacheSizeMB = 16;    // 0 to 256
    std::string gtbPath = "C:/gtb";  // at most MaxPathLength characters
    static constexpr std::size_t MaxPathLength = 255;

    std::atomic<bool> useBook{true};
    std::atomic<bool> randomMoves{false};  // play random moves instead of searching
    std::atomic<bool> post{true};          // thinking output
    bool outOfBook = false;    // the game has left the book; search thread 0's in a search
    Move ponderMove = NoMove;  // expected reply to the last move; the same

    unsigned maxCores;  // hardware threads, at least 1
    unsigned requestedCores = 1;
    unsigned threadCount() const { return static_cast<unsigned>(threadPool.size()); }

    PolyglotBook book;
    TranspositionTable transpositionTable;
    PawnHashTable pawnHashTable;
    TablebaseState tablebases;

  private:
    static void think(unsigned threadIndex, void* player);
    void thinkAndMove();
    Move chooseMove();
    void giveTimeOutOfBook();
    void stopHelpers();
    void rebuildPool();

    EngineInterface* engine;
    unsigned ttAllocatedFor = 0;  // the size setting that the table was made for; 0: no table
    unsigned pawnHashAllocatedFor = 0;
    std::vector<std::unique_ptr<SearchThread>> threadPool;
};

}  // namespace vatro
