// engine/help.h - what a user at a terminal is told beside the protocol.
#pragma once

#include <string>

namespace vatro {

/// The commands with a few words on each, as comment lines; not more than a terminal of 24 lines of
/// 80 characters shows.
std::string helpText();

/// The answer to a word that is no command.
std::string unknownWordText(const std::string& word);

/// What follows the result of a game.
extern const char endOfGameText[];

}  // namespace vatro
