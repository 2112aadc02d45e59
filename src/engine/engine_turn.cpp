// engine/engine_turn.cpp - the engine's part in the game: starting a search and making its move.
#include <algorithm>

#include "board/console.h"
#include "board/move_generation.h"
#include "engine/wb_engine.h"

namespace vatro {
namespace {

bool isLegalIn(const Board_0x88& board, Move move) {
    MoveList list;
    generateLegalMoves(board, list);
    return std::any_of(list.begin(), list.end(),
                       [move](const ScoredMove& entry) { return entry.move == move; });
}

}  // namespace

void WBEngine::takeTurn() {
    if (engineColour != player.game.board.toMove()) return;
    if (player.game.isFull()) {
        say("Error (game too long): no further move can be recorded\n");
        endGame();
        return;
    }
    player.preparePlayer(false);
    moveMade = false;
    player.startSearch();
}

void WBEngine::endGame() {
    engineColour = NoColour;
    forceMode = true;
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
    // The other side may answer, and set our clock, as soon as it has seen the move.
    timeControl.stop();
    const std::string text = moveToText(move);
    std::string report;
    if (player.shouldOfferDraw(move)) report = "offer draw\n";
    report += "# making engine move: " + text + '\n';
    append(move);
    report += "move " + text + '\n';
    if (player.ponderMove && isLegalIn(player.game.board, player.ponderMove)) {
        report += "# ponder move: " + moveToText(player.ponderMove) + '\n';
    }
    say(report);
    printBoard();
    if (!gameOver) gameOver = player.checkGameResult();
    if (gameOver) endGame();
    if (autoPlay) engineColour = player.game.board.toMove();
    moveMade = true;
}

void WBEngine::searchEnded() {
    // Without the mutex: the main thread may hold it while it waits for this thread to end.
    if (moveMade.exchange(false)) input->wake();
}

}  // namespace vatro
