// tools/random_games.h - games of random legal moves and statistics about them.
#pragma once

#include "base/random.h"
#include "board/game.h"
#include "tools/stop_check.h"

namespace vatro {

/// Plays `games` (1 or more) games from the start position with moves drawn at random, prints a
/// mark now and then while it runs and the statistics at the end. A game ends with mate, stalemate,
/// any draw by rule, a position that repeats, or when the record of moves is full. Leaves the start
/// position and an empty record.
/// A run that is stopped ends after the game that it plays.
void playRandomGames(Game& game, unsigned long games, Random& random, StopCheck& stop);

}  // namespace vatro
