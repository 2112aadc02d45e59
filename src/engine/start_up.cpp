// engine/start_up.cpp - the start of the program, up to the command loop, and its end.
//
// The start must be quick: an interface waits only seconds for the answer to "protover".
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include "base/console.h"
#include "base/program_folder.h"
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

/// Random games, random positions and the choice of book moves differ from run to run.
void seedRandomGenerator() {
    using std::chrono::milliseconds;
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    const auto total =
        static_cast<std::uint64_t>(std::chrono::duration_cast<milliseconds>(sinceEpoch).count());
    constexpr std::uint64_t MillisecondsPerDay = 86'400'000;
    std::srand(static_cast<std::uint32_t>((total % MillisecondsPerDay) * (total / 1000)));
}

/// The book that was installed with the program; empty when the build has none.
std::string installedBook() {
    const std::filesystem::path fromProgram(VATRO_INSTALLED_BOOK);  // relative to its folder
    const std::filesystem::path folder = programFolder();
    if (fromProgram.empty() || folder.empty()) return {};
    return (folder / fromProgram).lexically_normal().string();
}

/// A book in the working directory comes before the installed one.
void chooseBook(PolyglotBook& book) {
    std::error_code ignored;
    if (std::filesystem::exists(PolyglotBook::DefaultPath, ignored)) return;
    if (const std::string path = installedBook(); !path.empty()) book.setPath(path);
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
      player(timeControl, reporter, this) {}

WBEngine::~WBEngine() {
    player.stopSearch();
    input->abandon();
}

int WBEngine::run(const Args& commandLine) {
    setUpConsole();
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
    seedRandomGenerator();
    chooseBook(player.book);
    readConfiguration("vatro.ini", player);
    printBanner();
    applyCommandLine(commandLine, player);
    player.preparePlayer(false);
    if (!player.game.setup(startPositionFEN)) std::abort();  // never: the FEN is a constant
    player.outOfBook = false;
    boardChanged = true;
}

}  // namespace vatro
