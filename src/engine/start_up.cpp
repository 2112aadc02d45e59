// engine/start_up.cpp - the start of the program, up to the command loop, and its end.
//
// The start must be quick: an interface waits only seconds for the answer to "protover".
#include <cstdlib>

#include "base/console.h"
#include "base/version.h"
#include "engine/command_line.h"
#include "engine/configuration.h"
#include "engine/input_reader.h"
#include "engine/wb_engine.h"

namespace vatro {
namespace {

// File descriptors; fixed by POSIX and by Windows' C library.
constexpr int StandardInput = 0;
constexpr int StandardOutput = 1;

void printBanner() {
    say(std::string("# ") + ProgramTitle +
        "\n"
        "# a chess engine for XBoard and the terminal\n"
        "# \n"
        "feature done=0\n");
}

}  // namespace

WBEngine::WBEngine()
    : input(std::make_shared<InputQueue>()),
      gameLock(gameMutex, std::defer_lock),
      player(timeControl, reporter, this) {}

WBEngine::~WBEngine() {
    player.stopSearch();
    input->abandon();
}

int WBEngine::run(const Args& commandLine) {
    setUpConsole();
    atTerminal = inputIsTerminal();
    // Before the tables, which can do with less memory than its stack.
    if (!startInputReader(input, StandardInput, StandardOutput)) {
        say("# ERROR: no thread for the input\n");
        return EXIT_FAILURE;
    }
    startUp(commandLine);
    if (player.isReady()) runCommandLoop();
    return player.isReady() ? EXIT_SUCCESS : EXIT_FAILURE;
}

void WBEngine::startUp(const Args& commandLine) {
    readConfiguration("vatro.ini", player);
    printBanner();
    applyCommandLine(commandLine, player);
    player.preparePlayer(false);
    if (!player.game.setup(startPositionFEN)) std::abort();  // never: the FEN is a constant
    player.outOfBook = false;
    boardChanged = true;
}

}  // namespace vatro
