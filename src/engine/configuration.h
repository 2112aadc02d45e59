// engine/configuration.h - the configuration file.
#pragma once

#include <cstdio>

#include "search/chess_player.h"

namespace vatro {

/// Applies the "key = value" lines of the file to the player's settings, before its first
/// preparation. Unknown keys and lines without "=" are passed over, numbers out of range reported.
void readConfiguration(std::FILE* file, ChessPlayer& player);

/// The same for a file by its name; one that cannot be opened is no configuration.
void readConfiguration(const char* path, ChessPlayer& player);

}  // namespace vatro
