// shell/command_line.h - the program's arguments.
#pragma once

#include <string>
#include <vector>

#include "search/chess_player.h"

namespace vatro {

/// Applies the arguments, without the program's name; warns about those that it does not know.
void applyCommandLine(const std::vector<std::string>& args, ChessPlayer& player);

}  // namespace vatro
