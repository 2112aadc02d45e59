// engine/wb_engine.h - the engine as a chess interface sees it: commands in, moves out.
//
// The main thread runs the command loop. Search thread 0 comes in by makeEngineMove and
// searchEnded. The loop holds `gameMutex` while it works on the game, but never while it waits for
// input or for the search to end: the search may be waiting for the mutex to make its move.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "engine/input_queue.h"
#include "search/chess_player.h"
#include "search/time_control.h"
#include "tools/perft_hash.h"

namespace vatro {

struct CommandEntry;

class WBEngine final : public EngineInterface {
  public:
    using Args = std::vector<std::string>;
    using Handler = bool (WBEngine::*)(const Args&);

    WBEngine();
    ~WBEngine() override;

    /// Runs the program on standard input and output. Gives its exit status.
    int run(const Args& commandLine);

    /// Applies the configuration and sets up the first game.
    void startUp(const Args& commandLine);
    /// Obeys the lines of the input queue until "quit" or the end of input.
    void runCommandLoop();
    /// Where the command loop takes its lines from.
    InputQueue& inputQueue() { return *input; }

    // --- Search thread 0 ---

    void makeEngineMove(Move move) override;
    void searchEnded() override;

  private:
    static const CommandEntry* findCommand(std::string_view word);

    // --- The loop. Its thread holds no lock between these. ---
    void showPrompt();
    void obey(const InputLine& line);
    void goOnInAutoPlay();
    void finishAtEndOfInput();

    // --- Under the lock ---
    void execute(const std::string& line);
    bool checkAndRun(const CommandEntry& entry, const Args& args, const std::string& line);
    void endPass();
    void takeTurn();
    void endGame();
    void stopSearch();
    void printBoard();
    void append(Move move);
    void finishTakingBack();

    bool cmdQuit(const Args& args);
    bool cmdXboard(const Args& args);
    bool cmdProtover(const Args& args);
    bool cmdNew(const Args& args);
    bool cmdForce(const Args& args);
    bool cmdPing(const Args& args);
    bool cmdUserMove(const Args& args);
    bool cmdGo(const Args& args);
    bool cmdPlayOther(const Args& args);
    bool cmdSetBoard(const Args& args);
    bool cmdLevel(const Args& args);
    bool cmdSd(const Args& args);
    bool cmdTime(const Args& args);
    bool cmdUndo(const Args& args);
    bool cmdRemove(const Args& args);
    bool cmdAnalyze(const Args& args);
    bool cmdExit(const Args& args);
    bool cmdAuto(const Args& args);
    bool cmdPost(const Args& args);
    bool cmdNoPost(const Args& args);
    bool cmdCores(const Args& args);
    bool cmdEgtPath(const Args& args);
    bool cmdOption(const Args& args);
    bool cmdBook(const Args& args);
    bool cmdNoBook(const Args& args);
    bool cmdPerft(const Args& args);
    bool cmdDivide(const Args& args);
    bool cmdSelfTest(const Args& args);
    bool cmdTest(const Args& args);
    bool cmdEval(const Args& args);
    bool cmdTune(const Args& args);
    bool cmdRandPos(const Args& args);
    bool cmdRandGame(const Args& args);
    bool cmdNoRandGame(const Args& args);
    bool cmdRandGames(const Args& args);

    TimeControl timeControl;
    PerftHashTable perftHash;
    const std::shared_ptr<InputQueue> input;

    std::mutex gameMutex;  // guards the game and the fields below while a search may run
    std::unique_lock<std::mutex> gameLock;  // the main thread's hold on it
    Colour engineColour = NoColour;         // the side that the engine plays
    bool gameOver = false;
    bool forceMode = false;    // the engine only records moves
    bool boardChanged = true;  // since it was last printed
    bool xboardMode = false;   // an interface talks, not a user
    bool analyzeMode = false;  // the engine only looks at positions
    bool autoPlay = false;     // the engine plays both sides
    bool quitRequested = false;
    std::atomic<bool> moveMade{false};  // by the latest search; an end without a move wakes nobody

    ChessPlayer player;  // destroyed first: its threads use the fields above
};

}  // namespace vatro
