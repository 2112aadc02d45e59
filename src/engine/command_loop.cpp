// engine/command_loop.cpp - waiting for lines, checking them and running their commands.
//
// After every line, and in auto play after every move, the loop looks whether the game has ended
// and whether it is the engine's turn.
#include "board/console.h"
#include "engine/command_table.h"
#include "engine/tokens.h"

namespace vatro {

void WBEngine::runCommandLoop() {
    bool lineWanted = true;  // one prompt for one line
    while (!quitRequested) {
        if (lineWanted) showPrompt();
        InputLine line;
        switch (input->next(line)) {
            case InputQueue::Event::Line:
                obey(line);
                lineWanted = true;
                break;
            case InputQueue::Event::Woken:
                goOnInAutoPlay();
                lineWanted = false;
                break;
            case InputQueue::Event::End:
                finishAtEndOfInput();
                break;
        }
    }
}

void WBEngine::showPrompt() {
    const std::lock_guard held(gameLock);
    if (boardChanged) printBoard();
    if (!xboardMode) say("# Your move: ");
}

void WBEngine::obey(const InputLine& line) {
    constexpr std::size_t ShownLength = 60;  // characters of a refused line
    const std::lock_guard held(gameLock);
    const std::string text(trimLine(line.text));
    if (line.tooLong) {
        say("Error (line too long): " + text.substr(0, ShownLength) + "...\n");
    } else if (!text.empty()) {
        execute(text);
    }
    endPass();
}

void WBEngine::goOnInAutoPlay() {
    const std::lock_guard held(gameLock);
    if (autoPlay) endPass();
}

void WBEngine::finishAtEndOfInput() {
    // Nobody is left to end a search that has no time limit.
    if (timeControl.timed) {
        player.waitUntilIdle();
    } else {
        player.stopSearch();
    }
    quitRequested = true;
}

void WBEngine::execute(const std::string& line) {
    const std::size_t blank = line.find(' ');
    const CommandEntry* const entry = findCommand(std::string_view(line).substr(0, blank));
    if (!entry) return;  // an interface may know more commands than we do
    const Args args =
        blank == std::string::npos ? Args() : splitTokens(line.substr(blank + 1), ' ');
    if (checkAndRun(*entry, args, line)) return;
    say("# command \"" + line + "\" returned an error code \n");
}

bool WBEngine::checkAndRun(const CommandEntry& entry, const Args& args, const std::string& line) {
    if (args.size() < entry.minArgs) {
        write("Error (missing arguments, expected at least " + std::to_string(entry.minArgs) +
              "): " + line + '\n');
        return false;
    }
    if (args.size() > entry.maxArgs) {
        write("Error (too many arguments, expected at most " + std::to_string(entry.maxArgs) +
              "): " + line + '\n');
        return false;
    }
    if (entry.duringSearch == StopsSearch) stopSearch();
    return (this->*entry.handler)(args);
}

void WBEngine::endPass() {
    if (quitRequested || player.isSearching()) return;
    if (!gameOver) gameOver = player.checkGameResult();
    if (gameOver) endGame();
    takeTurn();
}

void WBEngine::stopSearch() {
    gameLock.unlock();
    player.stopSearch();
    gameLock.lock();
}

}  // namespace vatro
