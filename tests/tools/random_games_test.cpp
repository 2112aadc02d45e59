// tests/tools/random_games_test.cpp - which games are played, and what is said while they are.
#include "tools/random_games.h"

#include <sstream>

#include "base/text.h"
#include "board/draw.h"
#include "support.h"
#include "tools/game_statistics.h"

namespace vatro {
namespace {

constexpr std::uint64_t Seed = 20;

std::string outputOf(unsigned long games, StopCheck stop = {}) {
    const auto game = std::make_unique<Game>();
    Random random(Seed);
    testing::internal::CaptureStdout();
    playRandomGames(*game, games, random, stop);
    std::string text = testing::internal::GetCapturedStdout();
    EXPECT_EQ(game->plyCount, 0U);
    EXPECT_EQ(game->board.toFEN(), startPositionFEN);
    return text;
}

/// The statistics of games played by the rules: drawn from the list, up to mate, stalemate or draw.
std::string statisticsOfPlainGames(int games) {
    const auto game = std::make_unique<Game>();
    const auto stats = std::make_unique<GameStatistics>();
    Random random(Seed);
    for (int i = 0; i < games; ++i) {
        EXPECT_TRUE(game->setup(startPositionFEN));
        GameCounter counter(*game, *stats);
        for (DrawReason reason; !game->isFull();) {
            MoveList list;
            generateLegalMoves(game->board, list);
            const Move move = pickRandomMove(list, random);
            if (move == NoMove) break;
            counter.beforeMove(move);
            game->play(move);
            counter.afterMove();
            if (isDraw(game->board, reason)) break;
        }
        counter.endOfGame();
    }
    return statisticsText(*stats);
}

TEST(RandomGames, AreThoseOfAPlainLoop) {
    const std::string output = outputOf(200);
    EXPECT_EQ(output, "# Playing 200 random games ...\n" + std::string(50, '#') +
                          "\ncalculate average values ...\n" + statisticsOfPlainGames(200));
}

TEST(RandomGames, MarksTheProgress) {
    const std::pair<unsigned long, std::size_t> marks[] = {{1, 1},   {7, 7},    {49, 49}, {50, 50},
                                                           {99, 99}, {100, 50}, {130, 65}};
    for (const auto& [games, expected] : marks) {
        std::istringstream lines(outputOf(games));
        std::string line;
        std::getline(lines, line);
        EXPECT_EQ(line, formatted("# Playing %lu random games ...", games));
        std::getline(lines, line);
        EXPECT_EQ(line, std::string(expected, '#'));
    }
}

TEST(RandomGames, GiveTheStatisticsOfThoseThatWerePlayed) {
    int questions = 0;
    const std::string output = outputOf(20, StopCheck([&] { return ++questions == 3; }));
    EXPECT_TRUE(
        output.starts_with("# Playing 20 random games ...\n###\n# interrupted\n"
                           "calculate average values ...\n"
                           "Total games:                                 3\n"))
        << output;
}

}  // namespace
}  // namespace vatro
