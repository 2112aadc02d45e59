// engine/command_line.h - the arguments of the program.
#pragma once

#include <string>
#include <vector>

#include "search/chess_player.h"

namespace vatro {

/// Applies the arguments, without the program's name; complains about those it does not know.
void applyCommandLine(const std::vector<std::string>& args, ChessPlayer& player);

}  // namespace vatro
