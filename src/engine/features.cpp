// engine/features.cpp - what the engine tells an interface about itself.
#include "board/console.h"
#include "engine/setting_ranges.h"
#include "engine/version.h"
#include "engine/wb_engine.h"

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

std::string spinOption(const char* name, unsigned value, NumberRange range) {
    return formatted("feature option=\"%s -spin %u %d %d\"\n", name, value, range.min, range.max);
}

std::string pathOption(const char* name, const std::string& value) {
    return formatted("feature option=\"%s -path %s\"\n", name, value.c_str());
}

}  // namespace

/// "protover N": features and options. "feature done=1" ends the wait that the banner asked for.
bool WBEngine::cmdProtover(const Args& /*args*/) {
    write(fixedFeatures + spinOption("ttHashSizeMB", player.ttHashSizeMB, hashSizeRange) +
          spinOption("pawnHashSizeMB", player.pawnHashSizeMB, hashSizeRange) +
          spinOption("gtbCacheSizeMB", player.gtbCacheSizeMB, cacheSizeRange) +
          pathOption("gtbPath", player.gtbPath) + pathOption("bookFilePath", player.book.path()) +
          "feature myname=\"" + ProgramTitle + "\"\n");
    player.preparePlayer(false);
    say("feature done=1\n");
    return true;
}

}  // namespace vatro
