// uci/uci_engine.cpp - the command loop, positions, and what a search is told.
#include "uci/uci_engine.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "base/console.h"
#include "base/text.h"
#include "board/legality.h"
#include "board/make_move.h"
#include "board/move_generation.h"
#include "shell/command_line.h"
#include "shell/configuration.h"
#include "shell/default_book.h"

namespace vatro {
namespace {

bool isLegalReply(Board_0x88 board, Move move, Move reply) {
    UndoRecord undo;
    makeMove(board, move, undo);
    return isValidMove(board, reply) && isLegal(board, reply, computePins(board));
}

/// An interface without clocks may limit nothing and waits for a move nevertheless: it gets one as
/// in a game of 40 moves in five minutes.
void limitTime(GoCommand& command, Colour us) {
    const bool isLimited = command.timeLeftMs[us] || command.depth > 0 || command.nodes > 0 ||
                           command.mateMoves > 0 || command.moveTimeMs > 0 || command.infinite;
    if (isLimited) return;
    command.timeLeftMs[us] = 300'000;
    command.movesToGo = 40;
}

}  // namespace

UciEngine::UciEngine(std::shared_ptr<InputQueue> lineQueue)
    : input(std::move(lineQueue)), player(timeControl, reporter, this) {}

UciEngine::~UciEngine() { player.stopSearch(); }

void UciEngine::startUp(const std::vector<std::string>& commandLine) {
    chooseDefaultBook(player.book);
    readConfiguration(ConfigurationFile, player);
    applyCommandLine(commandLine, player);
    player.useBook = false;  // its moves are not the search's, see playsFromBook
    player.preparePlayer(false);
    if (!player.game.setup(startPositionFEN)) std::abort();  // never: the FEN is a constant
}

std::span<const UciEngine::Command> UciEngine::commands() {
    static constexpr Command table[] = {
        {"uci", &UciEngine::identify},
        {"debug", &UciEngine::setDebug},
        {"isready", &UciEngine::confirmReady},
        {"setoption", &UciEngine::setOption},
        {"register", &UciEngine::ignore},  // the program is free
        {"ucinewgame", &UciEngine::startNewGame},
        {"position", &UciEngine::setPosition},
        {"go", &UciEngine::go},
        {"stop", &UciEngine::stop},
        {"ponderhit", &UciEngine::ponderHit},
        {"quit", &UciEngine::quit},
    };
    return table;
}

void UciEngine::runCommandLoop() {
    say("\n");  // what was printed before may end with a prompt
    identify({});
    while (!quitRequested) {
        InputLine line;
        switch (input->next(line)) {
            case InputQueue::Event::Line:
                if (line.tooLong) {
                    sayInfo("line too long, ignored");
                } else {
                    runLine(trimLine(line.text));
                }
                break;
            case InputQueue::Event::End:
                handleEndOfInput();
                break;
            case InputQueue::Event::Woken:
                break;
        }
    }
}

/// Words before the first command of a line are passed over, as the protocol wants it.
void UciEngine::runLine(std::string_view line) {
    const std::string text(trimBlanksAndTabs(line));
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t end = std::min(rest.find_first_of(" \t"), rest.size());
        const std::string_view word = rest.substr(0, end);
        rest = trimBlanksAndTabs(rest.substr(end));
        for (const Command& command : commands()) {
            if (command.name == word) return (this->*command.handler)(std::string(rest));
        }
    }
    if (!text.empty()) sayInfo("unknown command: " + text.substr(0, 60));
}

void UciEngine::setDebug(const std::string& rest) { reporter.setDebug(rest == "on"); }

void UciEngine::confirmReady(const std::string& /*rest*/) {
    player.prepareFully();  // no clock runs yet
    say("readyok\n");
}

void UciEngine::ignore(const std::string& /*rest*/) {}

void UciEngine::quit(const std::string& /*rest*/) {
    player.stopSearch();
    quitRequested = true;
}

void UciEngine::handleEndOfInput() {
    // Nobody is left to end a search without a limit.
    if (!holdsAnswer) player.waitUntilIdle();
    endSearch();
    quitRequested = true;
}

void UciEngine::startNewGame(const std::string& /*rest*/) {
    endSearch();
    player.preparePlayer(true);
    player.outOfBook = false;
}

/// "position startpos|fen FEN [moves MOVE...]". One that cannot be set leaves the position.
void UciEngine::setPosition(const std::string& rest) {
    // The search's own moves need room in the board's records, too.
    constexpr unsigned MostPlies = Game::MaxMoves / 2;
    endSearch();
    const Words words = wordsOf(rest);
    const auto moves = std::find(words.begin(), words.end(), "moves");
    std::string fen = startPositionFEN;
    if (!words.empty() && words[0] == "fen") {
        fen = joinTokens(Words(words.begin() + 1, moves), ' ');
    } else if (words.empty() || words[0] != "startpos") {
        return sayInfo("position: neither startpos nor fen");
    }
    const auto game = std::make_unique<Game>();
    if (!game->setup(fen.c_str())) return sayInfo("illegal position: " + fen);
    for (auto word = moves == words.end() ? moves : moves + 1; word != words.end(); ++word) {
        const Move move = findLegalMove(game->board, *word);
        if (!move) return sayInfo("illegal move: " + *word);
        // What lies before a capture or a pawn move cannot be repeated, so it may be forgotten.
        const bool isFresh = game->board.halfmoveClock == 0 && game->plyCount >= MostPlies;
        if (isFresh && !game->setup(game->board.toFEN().c_str())) return;
        if (game->isFull()) return sayInfo("game too long");
        game->play(move);
    }
    if (game->isFull()) return sayInfo("game too long");
    player.game = *game;
}

void UciEngine::go(const std::string& rest) {
    endSearch();
    std::vector<std::string> faults;
    GoCommand command = readGoCommand(wordsOf(rest), player.game.board, faults);
    for (const std::string& fault : faults) {
        sayInfo(fault);
    }
    limitTime(command, player.game.board.toMove());
    latest = command;
    if (countLegalMoves(player.game.board) == 0) return answerWithoutMove();
    if (playsFromBook(command)) return;
    player.preparePlayer(false);
    if (!player.isReady()) {
        quitRequested = true;
        return;
    }
    startSearch(command);
}

/// There is nothing to search in a finished position, but an answer may have to wait even so.
void UciEngine::answerWithoutMove() {
    say(std::string("info depth 0 score ") + (inCheck(player.game.board) ? "mate 0\n" : "cp 0\n"));
    const std::lock_guard lock(answerMutex);
    answer = "bestmove 0000\n";
    holdsAnswer = latest.infinite || latest.ponder;
    if (!holdsAnswer) sayAnswer();
}

bool UciEngine::playsFromBook(const GoCommand& command) {
    const bool wantsSearch = analyses || command.infinite || command.ponder ||
                             command.mateMoves > 0 || !command.searchMoves.empty();
    if (!usesBook || wantsSearch) return false;
    Move move = NoMove;
    std::string error;
    const bool found = player.book.probe(player.game.board, random, move, error);
    if (!error.empty()) reporter.reportBookError(error);
    if (found) say("bestmove " + moveToText(move) + '\n');
    return found;
}

void UciEngine::startSearch(const GoCommand& command) {
    const bool hasClock = command.timeLeftMs[player.game.board.toMove()].has_value();
    const bool isEndless = command.ponder || command.infinite;
    timeControl.stop();
    timeControl.depthLimited = command.depth > 0;
    timeControl.maxDepth = command.depth;
    setClock(command);
    timeControl.timed = hasClock && command.moveTimeMs == 0 && !isEndless;
    player.limits = {command.searchMoves, lines, command.nodes, isEndless ? 0 : fixedTime()};
    reporter.stopAtMate(command.mateMoves, player);
    {
        const std::lock_guard lock(answerMutex);
        answer.clear();
        holdsAnswer = isEndless;
    }
    player.startSearch();
}

/// The time control that gives the plan what "go" says of the clock.
void UciEngine::setClock(const GoCommand& command) {
    const Colour us = player.game.board.toMove();
    const std::uint32_t fullMove = player.game.plyCount / 2 + 1;
    timeControl.restartGame();
    timeControl.timePerMove = static_cast<std::uint32_t>(
        command.moveTimeMs > 0 ? std::max(1, toCentiseconds(command.moveTimeMs)) : 0);
    const std::int32_t left = toCentiseconds(command.timeLeftMs[us].value_or(0));
    timeControl.movesPerSession = command.movesToGo ? fullMove + command.movesToGo - 1 : 0;
    timeControl.baseTime = static_cast<std::uint32_t>(std::max(left, 0));
    timeControl.increment = static_cast<std::uint32_t>(toCentiseconds(command.incrementMs[us]));
    player.setTimeLeft(left);
}

/// What of the time for this move alone is for the search, in centiseconds: a search for a fixed
/// time has no plan that could end it sooner. 0 where "go" gave no such time.
std::int32_t UciEngine::fixedTime() const {
    const auto time = static_cast<std::int32_t>(timeControl.timePerMove);
    const auto reserve = static_cast<std::int32_t>(timeControl.reserve);
    return time - std::min(reserve, time / 2);
}

void UciEngine::makeEngineMove(Move move) {
    const Move reply = player.result.reply;
    std::string text = "bestmove " + moveToText(move);
    if (reply && isLegalReply(player.game.board, move, reply)) {
        text += " ponder " + moveToText(reply);
    }
    const std::lock_guard lock(answerMutex);
    if (player.resultIsDiscarded()) return;
    answer = text + '\n';
    if (!holdsAnswer) sayAnswer();
}

/// With the mutex held.
void UciEngine::sayAnswer() {
    if (!answer.empty()) say(std::exchange(answer, {}));
}

void UciEngine::releaseAnswer() {
    const std::lock_guard lock(answerMutex);
    holdsAnswer = false;
    sayAnswer();
}

void UciEngine::endSearch() {
    releaseAnswer();
    player.finishSearch();
    player.waitUntilIdle();
}

void UciEngine::stop(const std::string& /*rest*/) {
    releaseAnswer();
    player.finishSearch();
}

/// The expected move was played: from here on the search is for our own clock.
void UciEngine::ponderHit(const std::string& /*rest*/) {
    if (!std::exchange(latest.ponder, false)) return;
    const bool hasClock =
        latest.moveTimeMs > 0 || latest.timeLeftMs[player.game.board.toMove()].has_value();
    if (hasClock) player.startClock();
    if (!latest.infinite) releaseAnswer();
}

}  // namespace vatro
