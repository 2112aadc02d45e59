// engine/start_up.cpp - the start of the program, up to the command loop, and its end.
//
// The start must be quick: an interface waits only seconds for the answer to "protover".
#include <chrono>
#include <cstdlib>
#include <utility>

#include "base/console.h"
#include "base/version.h"
#include "engine/wb_engine.h"
#include "shell/command_line.h"
#include "shell/configuration.h"
#include "shell/default_book.h"

namespace vatro {
namespace {

/// Random games, random positions and the choice of book moves differ from run to run.
void seedRandomGenerator() {
    using std::chrono::milliseconds;
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    const auto total =
        static_cast<std::uint64_t>(std::chrono::duration_cast<milliseconds>(sinceEpoch).count());
    constexpr std::uint64_t MillisecondsPerDay = 86'400'000;
    std::srand(static_cast<std::uint32_t>((total % MillisecondsPerDay) * (total / 1000)));
}

void printBanner() {
    say(std::string("# ") + ProgramTitle +
        "\n"
        "# a chess engine for XBoard and the terminal\n"
        "# \n"
        "feature done=0\n");
}

}  // namespace

WBEngine::WBEngine(std::shared_ptr<InputQueue> lines)
    : input(std::move(lines)),
      gameLock(gameMutex, std::defer_lock),
      player(timeControl, reporter, this) {}

WBEngine::~WBEngine() { player.stopSearch(); }

void WBEngine::startUp(const Args& commandLine) {
    seedRandomGenerator();
    atTerminal = inputIsTerminal();
    chooseDefaultBook(player.book);
    readConfiguration(ConfigurationFile, player);
    printBanner();
    applyCommandLine(commandLine, player);
    player.preparePlayer(false);
    if (!player.game.setup(startPositionFEN)) std::abort();  // never: the FEN is a constant
    player.outOfBook = false;
    boardChanged = true;
}

}  // namespace vatro
