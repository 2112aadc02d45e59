// engine/start_up.cpp - from the program's start to its first prompt, and its end.
//
// Nothing here may take long: an interface waits for the answer to "protover".
#include <chrono>
#include <cstdlib>

#include "board/console.h"
#include "engine/command_line.h"
#include "engine/configuration.h"
#include "engine/input_reader.h"
#include "engine/version.h"
#include "engine/wb_engine.h"

namespace vatro {
namespace {

constexpr int StandardInput = 0;  // file descriptor; fixed by POSIX, and by the C library elsewhere

/// Seeds the draws of random games, of random positions and of the book: differently in every run.
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

WBEngine::WBEngine()
    : input(std::make_shared<InputQueue>()),
      gameLock(gameMutex, std::defer_lock),
      player(timeControl, this) {}

WBEngine::~WBEngine() {
    player.stopSearch();
    input->abandon();
}

int WBEngine::run(const Args& commandLine) {
    setUpConsole();
    startUp(commandLine);
    startInputReader(input, StandardInput);
    runCommandLoop();
    return EXIT_SUCCESS;
}

void WBEngine::startUp(const Args& commandLine) {
    seedRandomGenerator();
    readConfiguration("vatro.ini", player);
    printBanner();
    applyCommandLine(commandLine, player);
    player.preparePlayer(false);
    if (!player.game.setup(startPositionFEN)) std::abort();  // it is a constant
    player.outOfBook = false;
    boardChanged = true;
}

}  // namespace vatro
