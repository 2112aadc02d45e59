// uci/uci_engine.h - the engine as a UCI interface sees it.
//
// The main thread runs the command loop and answers while a search runs; search thread 0 calls
// makeEngineMove. Each "go" is answered by one "bestmove", which may have to wait for "stop" or
// "ponderhit" though the search has ended.
#pragma once

#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/random.h"
#include "search/chess_player.h"
#include "search/time_control.h"
#include "shell/input_queue.h"
#include "uci/go_command.h"
#include "uci/uci_reporter.h"

namespace vatro {

class UciEngine final : public EngineInterface {
  public:
    /// The command loop takes its lines from `lines`.
    explicit UciEngine(std::shared_ptr<InputQueue> lines);
    ~UciEngine() override;

    /// Reads `vatro.ini` and the program's arguments and sets up the start position.
    void startUp(const std::vector<std::string>& commandLine);
    /// False when there is no memory or no thread for a search (reported).
    bool isReady() const { return player.isReady(); }
    /// Answers "uci", then runs the commands that follow, until "quit" or the end of input.
    void runCommandLoop();

    // --- Search thread 0 ---

    void makeEngineMove(Move move) override;
    void searchEnded() override {}

  private:
    using Words = std::vector<std::string>;
    struct Option;
    struct Command {
        std::string_view name;
        /// `rest` is the line after the command's name.
        void (UciEngine::*handler)(const std::string& rest);
    };

    static std::span<const Command> commands();
    static std::span<const Option> options();

    void runLine(std::string_view line);
    void identify(const std::string& rest);
    void setDebug(const std::string& rest);
    void confirmReady(const std::string& rest);
    void setOption(const std::string& rest);
    void ignore(const std::string& rest);
    void startNewGame(const std::string& rest);
    void setPosition(const std::string& rest);
    void go(const std::string& rest);
    void stop(const std::string& rest);
    void ponderHit(const std::string& rest);
    void quit(const std::string& rest);

    /// Ends a running search; its "bestmove" is out then.
    void endSearch();
    void handleEndOfInput();
    void startSearch(const GoCommand& command);
    void answerWithoutMove();
    void setClock(const GoCommand& command);
    std::int32_t fixedTime() const;
    /// Whether the answer could come from the book, and did.
    bool playsFromBook(const GoCommand& command);
    void releaseAnswer();
    void sayAnswer();

    std::shared_ptr<InputQueue> input;
    TimeControl timeControl;
    Random random = Random::seededByClock();  // the main thread's
    bool usesBook = false;
    bool analyses = false;  // for a user who looks at positions: no book
    unsigned lines = 1;     // best lines to show
    bool quitRequested = false;
    GoCommand latest;  // the "go" that is being searched for

    std::mutex answerMutex;  // guards the two fields below
    std::string answer;      // that is ready, but has to wait
    bool holdsAnswer = false;

    UciReporter reporter;
    ChessPlayer player;  // destroyed first: its threads use the fields above
};

}  // namespace vatro
