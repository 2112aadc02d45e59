// engine/configuration.h - the configuration file.
#pragma once

#include <cstdio>

#include "search/chess_player.h"

namespace vatro {

/// Applies the "name = value" lines of the file to the player's settings, before its first
/// preparation. Ignores unknown names and lines without "="; warns about values out of range and
/// about a file of more than 1000 lines, whose rest is ignored.
void readConfiguration(std::FILE* file, ChessPlayer& player);

/// The same for the file at `path`. Does nothing when it cannot be opened; warns
/// about what is no regular file, and does not read it.
void readConfiguration(const char* path, ChessPlayer& player);

}  // namespace vatro
