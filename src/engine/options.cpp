// engine/options.cpp - settings that an interface or a user changes while the engine runs.
#include <algorithm>

#include "base/console.h"
#include "base/text.h"
#include "engine/settings.h"
#include "engine/unlocked.h"
#include "engine/wb_engine.h"

namespace vatro {
namespace {

/// Why a value is refused; empty when it is not. An empty path is accepted: no book, no tables.
/// Only a number out of range is called illegal: interfaces take an error with that word for a
/// claim about a move, and never send such a number.
std::string faultOf(const Setting& setting, const std::string& value) {
    const std::string option = '\'' + std::string(setting.name) + "' option)";
    if (setting.kind != Setting::Kind::Number) {
        return setting.accepts(value) ? "" : "path too long for " + option + ": " + value;
    }
    if (value.empty()) return "missing value for " + option;
    return setting.accepts(value) ? "" : "illegal value for " + option + ": " + value;
}

}  // namespace

/// "option NAME=VALUE": sets an option. What follows a second "=" is ignored.
bool WBEngine::cmdOption(const Args& args) {
    std::vector<std::string> tokens = splitTokens(args[0], '=');
    tokens.resize(std::max<std::size_t>(tokens.size(), 2));
    const std::string& name = tokens[0];
    const std::string& value = tokens[1];
    const Setting* const setting = findSetting(name);
    if (!setting || !setting->isOption()) {
        say("Error (unknown option name): " + name + '\n');
        return false;
    }
    if (const std::string fault = faultOf(*setting, value); !fault.empty()) {
        say("Error (" + fault + '\n');
        return false;
    }
    say("# setting option: " + name + '=' + setting->normalised(value) + '\n');
    // Loading files takes time: a running search may make its move meanwhile.
    const Unlocked free(gameLock);
    return setting->change(player, value);
}

/// "cores N": search threads, from the next search on.
bool WBEngine::cmdCores(const Args& args) {
    const int cores = readNumber(args[0]);
    if (cores < 1) return false;
    player.setCores(static_cast<unsigned>(cores));
    return true;
}

/// "egtpath TYPE PATH": opens the endgame tablebases; the only type is "gaviota".
bool WBEngine::cmdEgtPath(const Args& args) {
    const std::string& type = args[0];
    const std::string& path = args[1];
    if (type != "gaviota") {
        say("# invalid TB type: " + type + '\n');
        return false;
    }
    say("# initializing TB: type=" + type + " path=" + path + '\n');
    const Unlocked free(gameLock);  // as in cmdOption
    player.initTablebases(path);
    if (const std::size_t found = player.tablebases.tableCount()) {
        say("# tablebases found: " + std::to_string(found) + '\n');
    }
    return true;
}

}  // namespace vatro
