// engine/command_loop.cpp - waiting for lines, checking them and running their commands.
//
// After every line, and in auto play after every move, the loop checks whether the game has ended
// and whether it is the engine's turn.
#include <algorithm>

#include "base/console.h"
#include "base/text.h"
#include "engine/command_table.h"
#include "engine/help.h"
#include "engine/unlocked.h"

namespace vatro {
namespace {

/// Null for a word that is no command.
const CommandEntry* findCommand(std::string_view word) {
    const auto all = WBEngine::commands();
    const auto found = std::find_if(
        all.begin(), all.end(), [word](const CommandEntry& entry) { return entry.name == word; });
    return found == all.end() ? nullptr : &*found;
}

/// True for two squares and perhaps the letter of a promotion: e2e4, e7e8q.
bool hasFormOfMove(std::string_view word) {
    constexpr std::string_view forms[] = {"abcdefghABCDEFGH", "12345678", "abcdefghABCDEFGH",
                                          "12345678", "qrbnQRBN"};
    if (word.size() != 4 && word.size() != 5) return false;
    for (std::size_t i = 0; i < word.size(); ++i) {
        if (forms[i].find(word[i]) == std::string_view::npos) return false;
    }
    return true;
}

}  // namespace

void WBEngine::runCommandLoop() {
    bool promptDue = true;  // one for each line
    while (!quitRequested) {
        if (promptDue) promptDue = !showPrompt();
        InputLine line;
        switch (input->next(line)) {
            case InputQueue::Event::Line:
                handleLine(line);
                promptDue = true;
                break;
            case InputQueue::Event::Woken:
                continueAutoPlay();
                break;
            case InputQueue::Event::End:
                handleEndOfInput();
                break;
        }
    }
}

bool WBEngine::showPrompt() {
    const std::lock_guard held(gameLock);
    if (boardChanged) printBoard();
    if (helpsUser() && player.isSearching()) return false;
    if (!xboardMode) say("# Your move: ");
    return true;
}

void WBEngine::handleLine(const InputLine& line) {
    constexpr std::size_t ShownLength = 60;  // characters of a line that is too long
    const std::lock_guard held(gameLock);
    const std::string text(trimLine(line.text));
    if (line.tooLong) {
        say("Error (line too long): " + text.substr(0, ShownLength) + "...\n");
    } else if (!text.empty()) {
        runCommand(text);
    }
    continueGame();
}

void WBEngine::continueAutoPlay() {
    const std::lock_guard held(gameLock);
    if (autoPlay) continueGame();
}

void WBEngine::handleEndOfInput() {
    // A search against the clock still makes its move; nobody is left to end one without a limit.
    if (timeControl.timed) {
        player.waitUntilIdle();
    } else {
        player.stopSearch();
    }
    quitRequested = true;
}

void WBEngine::runCommand(const std::string& line) {
    const std::size_t blank = line.find(' ');
    const CommandEntry* entry = findCommand(std::string_view(line).substr(0, blank));
    Args args = blank == std::string::npos ? Args() : splitTokens(line.substr(blank + 1), ' ');
    if (!entry && hasFormOfMove(line)) {  // some interfaces send no word before a move
        entry = findCommand("usermove");
        args = {line};
    }
    if (!entry) {  // interfaces send commands that we do not know
        if (helpsUser()) say(line == "help" ? helpText() : unknownWordText(line.substr(0, blank)));
        return;
    }
    if (checkAndRun(*entry, args, line)) return;
    say("# command \"" + line + "\" returned an error code \n");
}

bool WBEngine::checkAndRun(const CommandEntry& entry, const Args& args, const std::string& line) {
    if (args.size() < entry.minArgs) {
        say("Error (missing arguments, expected at least " + std::to_string(entry.minArgs) +
            "): " + line + '\n');
        return false;
    }
    if (args.size() > entry.maxArgs) {
        say("Error (too many arguments, expected at most " + std::to_string(entry.maxArgs) +
            "): " + line + '\n');
        return false;
    }
    if (entry.duringSearch == StopsSearch) stopSearch();
    return (this->*entry.handler)(args);
}

void WBEngine::continueGame() {
    if (quitRequested || player.isSearching()) return;
    checkForResult();
    takeTurn();
}

void WBEngine::stopSearch() {
    player.discardResult();  // before the lock is open to a move
    positionAnalysed = false;
    const Unlocked free(gameLock);
    player.stopSearch();
}

}  // namespace vatro
