// engine/start_up.cpp - the start of the program, up to the command loop, and its end.
//
// The start must be quick: an interface waits only seconds for the answer to "protover".
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
