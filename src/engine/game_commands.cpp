// engine/game_commands.cpp - commands that change the game or the engine's role in it.
//
// They only set `engineColour` and the modes: the loop starts the engine's turn after the command
// when the side to move is `engineColour`.
#include "base/console.h"
#include "base/text.h"
#include "board/move_generation.h"
#include "engine/wb_engine.h"

namespace vatro {
namespace {

constexpr char gameIsOverError[] = "Error (cannot make a move at end of game)\n";

}  // namespace

/// "new": a game from the start position with empty tables; the engine plays Black.
bool WBEngine::cmdNew(const Args& /*args*/) {
    player.preparePlayer(true);
    const bool ready = player.game.setup(startPositionFEN);
    player.outOfBook = false;
    player.randomMoves = false;
    gameOver = false;
    forceMode = false;
    autoPlay = false;
    timeControl.reset();
    engineColour = ~player.game.board.toMove();
    if (analyzeMode) {
        engineColour = player.game.board.toMove();
        timeControl.timed = false;
    }
    printBoard();
    return ready;
}

/// "force": the engine plays neither side.
bool WBEngine::cmdForce(const Args& /*args*/) {
    timeControl.stop();
    engineColour = NoColour;
    forceMode = true;
    autoPlay = false;
    return true;
}

/// "go": the engine plays the side to move.
bool WBEngine::cmdGo(const Args& /*args*/) {
    if (gameOver) {
        say(gameIsOverError);
        return false;
    }
    forceMode = false;
    leaveAnalysis();
    engineColour = player.game.board.toMove();
    return true;
}

/// "playother": the engine plays the side that is not to move.
bool WBEngine::cmdPlayOther(const Args& /*args*/) {
    forceMode = false;
    leaveAnalysis();
    engineColour = ~player.game.board.toMove();
    return true;
}

/// "auto": the engine plays both sides.
bool WBEngine::cmdAuto(const Args& args) {
    if (!args.empty()) return false;
    autoPlay = true;
    forceMode = false;
    leaveAnalysis();
    engineColour = player.game.board.toMove();
    return true;
}

/// "analyze": the engine searches each position without limits and plays no move.
bool WBEngine::cmdAnalyze(const Args& /*args*/) {
    if (!analyzeMode) {
        analyzeMode = true;
        autoPlay = false;
        timeControl.timed = false;
        timeControl.depthLimited = false;
    }
    engineColour = player.game.board.toMove();
    return true;
}

/// "exit": ends analysis.
bool WBEngine::cmdExit(const Args& /*args*/) {
    if (!analyzeMode) return false;
    leaveAnalysis();
    timeControl.depthLimited = false;
    engineColour = NoColour;
    return true;
}

/// Whatever ends analysis leaves a game against the clock behind.
void WBEngine::leaveAnalysis() {
    if (!analyzeMode) return;
    stopSearch();  // it has no other end, and "auto" lets a search run
    analyzeMode = false;
    timeControl.timed = true;
}

/// "usermove MOVE": the opponent's move, which the engine answers unless in force mode.
bool WBEngine::cmdUserMove(const Args& args) {
    const std::string& text = args[0];
    if (gameOver) {
        say(gameIsOverError);
        return false;
    }
    if (text.size() != 4 && text.size() != 5) {
        say("Error (illegal argument to 'usermove' command): " + text + '\n');
        return false;
    }
    const Move move = findLegalMove(player.game.board, text);
    if (move == NoMove) {
        say("Error (illegal move): " + text + '\n');
        return false;
    }
    if (player.game.isFull()) {
        say("Error (game too long): " + text + '\n');
        return false;
    }
    say("# making user move: " + text + '\n');
    append(move);
    if (!forceMode || analyzeMode) engineColour = player.game.board.toMove();
    printBoard();
    return true;
}

/// "setboard FEN": sets a position and, outside analysis, force mode. A refused FEN leaves the
/// position but sets force mode all the same.
bool WBEngine::cmdSetBoard(const Args& args) {
    const std::string fen = joinTokens(args, ' ');
    const bool accepted = Board_0x88().setupFromFEN(fen.c_str()) && player.game.setup(fen.c_str());
    if (accepted) {
        timeControl.restartGame();
    } else if (xboardMode) {
        say("tellusererror Illegal position\n");
    }
    boardChanged = true;
    gameOver = false;
    autoPlay = false;
    if (analyzeMode) {
        engineColour = player.game.board.toMove();
    } else {
        forceMode = true;
        engineColour = NoColour;
    }
    return accepted;
}

/// "undo": takes back one move.
bool WBEngine::cmdUndo(const Args& /*args*/) {
    if (player.game.plyCount < 1) return false;
    player.game.takeBack();
    finishTakingBack();
    return true;
}

/// "remove": takes back two moves, one of each side.
bool WBEngine::cmdRemove(const Args& /*args*/) {
    if (player.game.plyCount < 2) return false;
    player.game.takeBack();
    player.game.takeBack();
    finishTakingBack();
    return true;
}

void WBEngine::finishTakingBack() {
    boardChanged = true;
    gameOver = false;
    if (analyzeMode) engineColour = player.game.board.toMove();
}

}  // namespace vatro
