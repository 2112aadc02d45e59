// engine/features.cpp - "protover": the features and options that the engine announces.
#include "base/console.h"
#include "base/version.h"
#include "engine/wb_engine.h"
#include "shell/settings.h"

namespace vatro {
namespace {

constexpr char fixedFeatures[] =
    "feature ping=1\n"
    "feature setboard=1\n"
    "feature playother=1\n"
    "feature usermove=1\n"
    "feature colors=0\n"
    "feature sigint=0\n"
    "feature sigterm=0\n"
    "feature analyze=1\n"
    "feature name=0\n"
    "feature nps=0\n"
    "feature debug=1\n"
    "feature egt=\"gaviota\"\n"
    "feature smp=1\n"
    "feature variants=\"normal\"\n";

std::string optionLine(const Setting& setting, const ChessPlayer& player) {
    std::string line = "feature option=\"" + std::string(setting.name);
    if (setting.kind == Setting::Kind::Number) {
        line += " -spin " + setting.value(player) + ' ' + std::to_string(setting.range.min) + ' ' +
                std::to_string(setting.range.max);
    } else {
        line += " -path " + setting.value(player);
    }
    return line + "\"\n";
}

}  // namespace

/// "protover N". "feature done=1" ends the wait that "feature done=0" in the banner asked for.
bool WBEngine::cmdProtover(const Args& /*args*/) {
    std::string lines = fixedFeatures;
    for (const Setting& setting : settings()) {
        if (setting.isOption()) lines += optionLine(setting, player);
    }
    say(lines + "feature myname=\"" + ProgramTitle + "\"\n");
    player.preparePlayer(false);
    say("feature done=1\n");
    return true;
}

}  // namespace vatro
