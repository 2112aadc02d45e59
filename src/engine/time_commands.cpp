// engine/time_commands.cpp - commands that bound the search.
//
// The time control's arithmetic is unsigned and wraps; see search/time_control.cpp.
#include "engine/tokens.h"
#include "engine/wb_engine.h"

namespace vatro {
namespace {

std::uint32_t readUnsigned(std::string_view text) {
    return static_cast<std::uint32_t>(readNumber(text));
}

}  // namespace

/// "level MPS BASE INC": moves per session (0: the whole game), minutes or minutes:seconds for it,
/// seconds added per move.
bool WBEngine::cmdLevel(const Args& args) {
    const std::vector<std::string> base = splitTokens(args[1], ':');
    if (base.empty() || base.size() > 2) return false;
    const std::uint32_t minutes = readUnsigned(base[0]);
    const std::uint32_t seconds = base.size() == 2 ? readUnsigned(base[1]) : 0;
    timeControl.movesPerSession = readUnsigned(args[0]);
    timeControl.baseTime = (minutes * 60 + seconds) * 100;
    timeControl.increment = readUnsigned(args[2]) * 100;
    return true;
}

/// "sd DEPTH": no iteration goes deeper.
bool WBEngine::cmdSd(const Args& args) {
    const int depth = readNumber(args[0]);
    if (depth < 0) return false;
    timeControl.maxDepth = static_cast<std::uint32_t>(depth);
    timeControl.depthLimited = true;
    return true;
}

/// "time CENTISECONDS": what the engine's clock shows. Turned into the time used so far.
bool WBEngine::cmdTime(const Args& args) {
    const std::uint32_t moveNumber = player.game.plyCount / 2 + 1;
    const std::uint32_t perSession = timeControl.movesPerSession;
    const std::uint32_t sessions =
        perSession == 0 ? 1 : moveNumber / perSession + (moveNumber % perSession != 0 ? 1 : 0);
    timeControl.timeUsed = sessions * timeControl.baseTime + moveNumber * timeControl.increment -
                           readUnsigned(args[0]);
    return true;
}

}  // namespace vatro
