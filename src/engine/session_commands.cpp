// engine/session_commands.cpp - commands about the session and switches that hold until changed.
#include "base/console.h"
#include "base/text.h"
#include "engine/wb_engine.h"

namespace vatro {

bool WBEngine::cmdQuit(const Args& /*args*/) {
    quitRequested = true;
    return true;
}

/// "xboard": an interface is connected; no prompts from here on.
bool WBEngine::cmdXboard(const Args& /*args*/) {
    say("\n");
    xboardMode = true;
    return true;
}

bool WBEngine::cmdPing(const Args& args) {
    say("pong " + std::to_string(readNumber(args[0])) + '\n');
    return true;
}

bool WBEngine::cmdPost(const Args& /*args*/) {
    player.post = true;
    return true;
}

bool WBEngine::cmdNoPost(const Args& /*args*/) {
    player.post = false;
    return true;
}

bool WBEngine::cmdBook(const Args& /*args*/) {
    player.useBook = true;
    return true;
}

bool WBEngine::cmdNoBook(const Args& /*args*/) {
    player.useBook = false;
    return true;
}

bool WBEngine::cmdRandGame(const Args& /*args*/) {
    player.randomMoves = true;
    return true;
}

bool WBEngine::cmdNoRandGame(const Args& /*args*/) {
    player.randomMoves = false;
    return true;
}

}  // namespace vatro
