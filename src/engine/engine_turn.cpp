// engine/engine_turn.cpp - the engine's part in the game: starting a search and making its move.
#include <algorithm>

#include "base/console.h"
#include "board/move_generation.h"
#include "engine/help.h"
#include "engine/wb_engine.h"

namespace vatro {
namespace {

bool isLegalIn(const Board_0x88& board, Move move) {
    MoveList list;
    generateLegalMoves(board, list);
    return std::any_of(list.begin(), list.end(),
                       [move](const ScoredMove& entry) { return entry.move() == move; });
}

/// The protocol's claim of the result.
const char* resultLine(GameResult result) {
    switch (result) {
        case GameResult::WhiteMates:
            return "1-0 {White wins by checkmate}\n";
        case GameResult::BlackMates:
            return "0-1 {Black wins by checkmate}\n";
        case GameResult::Stalemate:
            return "1/2-1/2 {Stalemate}\n";
        case GameResult::InsufficientMaterial:
            return "1/2-1/2 {Draw by insufficient material}\n";
        case GameResult::Open:
            break;
    }
    return "";
}

}  // namespace

void WBEngine::takeTurn() {
    if (engineColour != player.game.board.toMove()) return;
    if (analyzeMode && positionAnalysed) return;  // a finished analysis would only be repeated
    if (player.game.isFull()) {
        say("Error (game too long): no further move can be recorded\n");
        endGame();
        return;
    }
    player.preparePlayer(false);
    if (!player.isReady()) {
        quitRequested = true;
        return;
    }
    moveMade = false;
    positionAnalysed = analyzeMode;
    player.startSearch();
}

void WBEngine::checkForResult() {
    if (!gameOver) {
        const GameResult result = player.gameResult();
        if (result == GameResult::Open) return;
        gameOver = true;
        say(resultLine(result));
        if (helpsUser()) say(endOfGameText);
    }
    endGame();
}

void WBEngine::endGame() {
    engineColour = NoColour;
    forceMode = true;
    autoPlay = false;
}

void WBEngine::append(Move move) {
    player.game.play(move);
    boardChanged = true;
}

void WBEngine::printBoard() {
    boardChanged = false;
    say(boardText(player.game.board));
}

void WBEngine::makeEngineMove(Move move) {
    const std::lock_guard held(gameMutex);
    if (!timeControl.timed || player.resultIsDiscarded()) return;  // analysis plays nothing
    // The other side may answer, and set our clock, as soon as it has seen the move.
    timeControl.stop();
    const std::string text = moveToText(move);
    std::string report;
    if (player.shouldOfferDraw(move)) report = "offer draw\n";
    report += "# making engine move: " + text + '\n';
    append(move);
    report += "move " + text + '\n';
    const Move reply = player.result.reply;
    if (reply && isLegalIn(player.game.board, reply)) {
        report += "# ponder move: " + moveToText(reply) + '\n';
    }
    say(report);
    printBoard();
    checkForResult();
    if (autoPlay) engineColour = player.game.board.toMove();
    moveMade = true;
}

void WBEngine::searchEnded() {
    // Without the mutex: the main thread may hold it while it waits for this thread to end.
    if (moveMade.exchange(false)) input->wake();
}

}  // namespace vatro
