// engine/wb_engine.h - the engine as a chess interface sees it: commands in, moves out.
//
// The main thread runs the command loop; search thread 0 calls makeEngineMove and searchEnded. The
// loop holds `gameMutex` while it works on the game, but never while it waits for input or for the
// search to end: the search may be waiting for the mutex to make its move.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

#include "engine/winboard_reporter.h"
#include "search/chess_player.h"
#include "search/time_control.h"
#include "shell/input_queue.h"
#include "tools/perft_hash.h"
#include "tools/stop_check.h"

namespace vatro {

struct CommandEntry;

class WBEngine final : public EngineInterface {
  public:
    using Args = std::vector<std::string>;
    using Handler = bool (WBEngine::*)(const Args&);

    /// The command loop takes its lines from `lines`.
    explicit WBEngine(std::shared_ptr<InputQueue> lines);
    ~WBEngine() override;

    /// Reads `vatro.ini` and the command line and sets up the first game.
    void startUp(const Args& commandLine);
    /// False when there is no memory or no thread for a search (reported).
    bool isReady() const { return player.isReady(); }
    /// Runs the commands of the input queue until "quit" or the end of input.
    void runCommandLoop();
    /// The loop has ended because the other side speaks UCI.
    bool uciIsRequested() const { return uciRequested; }
    /// All commands. Include engine/command_table.h to read them.
    static std::span<const CommandEntry> commands();

    // --- Search thread 0 ---

    void makeEngineMove(Move move) override;
    void searchEnded() override;

  private:
    // --- The loop's steps. Each takes `gameMutex` itself if it needs it. ---
    /// False when the prompt has to wait for the end of a search.
    bool showPrompt();
    void handleLine(const InputLine& line);
    void continueAutoPlay();
    void handleEndOfInput();

    // --- With `gameMutex` held ---
    void runCommand(const std::string& line);
    /// False when the number of arguments is wrong (reported) or the command fails.
    bool checkAndRun(const CommandEntry& entry, const Args& args, const std::string& line);
    /// Between searches: looks for the end of the game and starts the engine's turn.
    void continueGame();
    void takeTurn();
    void leaveAnalysis();
    /// Prints the result line once the rules have ended the game; the engine then stands back.
    void checkForResult();
    /// The engine plays no side from here on.
    void endGame();
    /// Ends a running search, whose result is discarded. Releases the mutex while it waits.
    void stopSearch();
    void printBoard();
    /// Plays a legal move in the game.
    void append(Move move);
    void finishTakingBack();
    /// Somebody types the commands and reads the answers. Scripts and interfaces use a pipe.
    bool helpsUser() const { return atTerminal && !xboardMode; }
    /// For a run that begins now: "quit" or the end of input stops it, unless it came with the
    /// command. A script that sends all its lines at once gets whole answers.
    StopCheck stopCheck() const;

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
    bool cmdSt(const Args& args);
    bool cmdMoveNow(const Args& args);
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
    Random random = Random::seededByClock();  // the main thread's
    const std::shared_ptr<InputQueue> input;

    std::mutex gameMutex;  // guards the game and the fields below while a search may run
    std::unique_lock<std::mutex> gameLock;  // the main thread's hold on it
    Colour engineColour = NoColour;         // the side that the engine plays
    bool gameOver = false;
    bool forceMode = false;         // the engine only records moves
    bool boardChanged = true;       // since it was last printed
    bool xboardMode = false;        // an interface is connected: no prompts
    bool atTerminal = false;        // standard input is one
    bool positionAnalysed = false;  // by a search without limits, which runs or has ended by itself
    bool analyzeMode = false;       // the engine searches every position and plays nothing
    bool autoPlay = false;          // the engine plays both sides
    bool quitRequested = false;
    bool isFirstLine = true;  // no line has come
    bool uciRequested = false;
    std::atomic<bool> moveMade{false};  // by the latest search; one that made none wakes nobody

    WinBoardReporter reporter;
    ChessPlayer player;  // destroyed first: its threads use the fields above
};

}  // namespace vatro
