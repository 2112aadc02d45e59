// tools/random_games.cpp - playing the games and reporting on them.
#include "tools/random_games.h"

#include <algorithm>
#include <cassert>
#include <memory>
#include <string>

#include "base/console.h"
#include "base/text.h"
#include "board/draw.h"
#include "tools/game_statistics.h"
#include "tools/random_move.h"

namespace vatro {
namespace {

constexpr unsigned ProgressMarks = 50;  // in a long run

void setupStart(Game& game) {
    const bool accepted = game.setup(startPositionFEN);
    assert(accepted);
    static_cast<void>(accepted);
}

void playRandomGame(Game& game, GameStatistics& stats, Random& random) {
    setupStart(game);
    GameCounter counter(game, stats);
    DrawReason reason;
    do {
        if (game.isFull()) break;
        const Move move = drawLegalMove(game.board, random);
        if (move == NoMove) break;
        counter.beforeMove(move);
        game.play(move);
        counter.afterMove();
    } while (!isDraw(game.board, reason));
    counter.endOfGame();
}

}  // namespace

void playRandomGames(Game& game, unsigned long games, Random& random, StopCheck& stop) {
    say(formatted("# Playing %lu random games ...\n", games));
    const auto stats = std::make_unique<GameStatistics>();
    const unsigned long interval = std::max(games / ProgressMarks, 1UL);  // few games: a mark each
    for (unsigned long i = 0; i < games; ++i) {
        if (i > 0 && stop.mustStop()) break;
        playRandomGame(game, *stats, random);
        if (i % interval == 0) say("#");
    }
    say(std::string("\n") + (stop.hasStopped() ? InterruptedLine : "") +
        "calculate average values ...\n" + statisticsText(*stats));
    setupStart(game);
}

}  // namespace vatro
