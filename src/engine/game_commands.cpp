// engine/game_commands.cpp - commands that change the game or the engine's role in it.
//
// Whether the engine has to move follows from `engineColour` alone; the loop looks at it after each
// command.
#include <algorithm>

#include "board/console.h"
#include "board/move_generation.h"
#include "engine/wb_engine.h"

namespace vatro {
namespace {

/// The legal move that is written so, in letters of either case; NoMove when there is none.
Move findLegalMove(const Board_0x88& board, std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    MoveList list;
    generateLegalMoves(board, list);
    const auto* const found =
        std::find_if(list.begin(), list.end(),
                     [&text](const ScoredMove& entry) { return moveToText(entry.move) == text; });
    return found == list.end() ? NoMove : found->move;
}

std::string joined(const WBEngine::Args& args) {
    std::string text;
    for (const std::string& arg : args) {
        if (&arg != &args.front()) text += ' ';
        text += arg;
    }
    return text;
}

constexpr char gameIsOverError[] = "Error (cannot make a move at end of game)\n";

}  // namespace

/// "new": a game from the start position, the engine plays Black; empties the tables.
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

bool WBEngine::cmdForce(const Args& /*args*/) {
    timeControl.stop();
    engineColour = NoColour;
    forceMode = true;
    autoPlay = false;
    return true;
}

bool WBEngine::cmdGo(const Args& /*args*/) {
    if (gameOver) {
        say(gameIsOverError);
        return false;
    }
    forceMode = false;
    analyzeMode = false;
    engineColour = player.game.board.toMove();
    return true;
}

bool WBEngine::cmdPlayOther(const Args& /*args*/) {
    forceMode = false;
    analyzeMode = false;
    engineColour = ~player.game.board.toMove();
    return true;
}

bool WBEngine::cmdAuto(const Args& args) {
    if (!args.empty()) return false;
    autoPlay = true;
    forceMode = false;
    analyzeMode = false;
    engineColour = player.game.board.toMove();
    return true;
}

bool WBEngine::cmdAnalyze(const Args& /*args*/) {
    if (analyzeMode) return true;
    analyzeMode = true;
    timeControl.timed = false;
    timeControl.depthLimited = false;
    engineColour = player.game.board.toMove();
    return true;
}

bool WBEngine::cmdExit(const Args& /*args*/) {
    if (!analyzeMode) return false;
    analyzeMode = false;
    timeControl.timed = true;
    timeControl.depthLimited = false;
    engineColour = NoColour;
    return true;
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

/// "setboard FEN": a refused FEN leaves the position, but the engine stands back all the same.
bool WBEngine::cmdSetBoard(const Args& args) {
    const std::string fen = joined(args);
    const bool accepted = Board_0x88().setupFromFEN(fen.c_str()) && player.game.setup(fen.c_str());
    boardChanged = true;
    gameOver = false;
    if (analyzeMode) {
        engineColour = player.game.board.toMove();
    } else {
        forceMode = true;
        engineColour = NoColour;
    }
    return accepted;
}

bool WBEngine::cmdUndo(const Args& /*args*/) {
    if (player.game.plyCount < 1) return false;
    player.game.takeBack();
    finishTakingBack();
    return true;
}

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
