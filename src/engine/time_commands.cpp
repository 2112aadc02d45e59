// engine/time_commands.cpp - commands that limit the search.
//
// The time control's arithmetic is unsigned and wraps, as in search/time_control.cpp.
#include <algorithm>
#include <cstdint>

#include "base/text.h"
#include "engine/wb_engine.h"

namespace vatro {
namespace {

std::uint32_t readUnsigned(std::string_view text) {
    return static_cast<std::uint32_t>(readNumber(text));
}

}  // namespace

/// "level MPS BASE INC": moves per session (0: the whole game), its time in minutes or
/// minutes:seconds, seconds added per move.
bool WBEngine::cmdLevel(const Args& args) {
    const std::vector<std::string> base = splitTokens(args[1], ':');
    if (base.empty() || base.size() > 2) return false;
    const std::uint32_t minutes = readUnsigned(base[0]);
    const std::uint32_t seconds = base.size() == 2 ? readUnsigned(base[1]) : 0;
    timeControl.movesPerSession = readUnsigned(args[0]);
    timeControl.baseTime = (minutes * 60 + seconds) * 100;
    timeControl.increment = readUnsigned(args[2]) * 100;
    timeControl.timePerMove = 0;
    timeControl.forgetTimeLeft();
    return true;
}

/// "st SECONDS": the time for each move, until "level" or "new".
bool WBEngine::cmdSt(const Args& args) {
    constexpr int Most = INT32_MAX / 100;
    const int seconds = readNumber(args[0]);
    if (seconds < 1) return false;
    timeControl.timePerMove = static_cast<std::uint32_t>(std::min(seconds, Most)) * 100;
    return true;
}

/// "?": a search against the clock plays its best move at once.
bool WBEngine::cmdMoveNow(const Args& /*args*/) {
    if (timeControl.timed) player.finishSearch();
    return true;
}

/// "sd DEPTH": the depth of the last iteration.
bool WBEngine::cmdSd(const Args& args) {
    const int depth = readNumber(args[0]);
    if (depth < 0) return false;
    timeControl.maxDepth = static_cast<std::uint32_t>(depth);
    timeControl.depthLimited = true;
    return true;
}

/// "time CENTISECONDS": what is left on the engine's clock.
bool WBEngine::cmdTime(const Args& args) {
    player.setTimeLeft(readNumber(args[0]));
    return true;
}

}  // namespace vatro
