// tests/search/player_test.cpp - threads that start, stop and hand over a move.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "board/legality.h"
#include "search/chess_player.h"
#include "search/fixed_search.h"

namespace vatro {
namespace {

struct MoveCatcher final : EngineInterface {
    void makeEngineMove(Move move) override {
        const std::lock_guard held(gameMutex);
        if (player && player->resultIsDiscarded()) return;
        caught = move;
        ++moves;
        if (game) game->play(move);
    }
    void searchEnded() override { ++ended; }

    const ChessPlayer* player = nullptr;
    std::mutex gameMutex;
    Move caught = NoMove;
    int moves = 0;
    Game* game = nullptr;  // to play the moves in
    std::atomic<int> ended{0};
};

/// What the player reported, in order; the reports come from the main thread and from thread 0,
/// never at once.
struct ReportCatcher final : SearchReporter {
    void reportThinking(const ThinkingReport& report) override { nodes.push_back(report.nodes); }
    void reportStop(const StopReport& report) override { stops.push_back(report.reason); }
    void reportStatistics(const StatisticsReport& report) override {
        statistics = report;
        statisticsCame = true;
    }
    void reportTimePlan(const TimePlan& plan) override { timesForMove.push_back(plan.max); }
    void reportExtraTime(std::int32_t time) override { timesForMove.push_back(time); }
    void reportClockLimit(const ClockLimit& limit) override {
        clockLimits.push_back(limit.timeForMove);
    }
    void reportTableSize(TableName /*table*/, unsigned megabytes) override {
        tableSizes.push_back(megabytes);
    }

    std::vector<std::uint64_t> nodes;
    std::vector<StopReason> stops;
    std::optional<StatisticsReport> statistics;
    std::atomic<bool> statisticsCame{false};
    std::vector<std::int32_t> timesForMove;
    std::vector<std::int32_t> clockLimits;
    std::vector<unsigned> tableSizes;
};

struct Player : testing::Test {
    void SetUp() override {
        engine.player = player.get();
        player->ttHashSizeMB = 4;
        player->pawnHashSizeMB = 1;
        player->useBook = false;
        player->requestedCores = 3;  // more than the machine may have
        ASSERT_TRUE(player->game.setup(startPositionFEN));
        player->preparePlayer(false);
    }
    void waitForEnd(int searches) {
        player->waitUntilIdle();
        while (engine.ended < searches) {
            std::this_thread::yield();
        }
    }

    TimeControl control;
    MoveCatcher engine;
    ReportCatcher reports;
    std::unique_ptr<ChessPlayer> player = std::make_unique<ChessPlayer>(control, reports, &engine);
};

TEST_F(Player, HandsOverOneLegalMovePerSearch) {
    control.depthLimited = true;
    control.maxDepth = 5;
    for (int searches = 1; searches <= 5; ++searches) {
        player->startSearch();
        waitForEnd(searches);
        EXPECT_EQ(engine.moves, searches);
        EXPECT_TRUE(isValidMove(player->game.board, engine.caught));
    }
}

// Stopped at any moment, also before the threads are awake: no move comes, and nothing hangs.
TEST_F(Player, AStoppedSearchPlaysNoMove) {
    for (int i = 0; i < 40; ++i) {
        player->startSearch();
        std::this_thread::sleep_for(std::chrono::microseconds(i * i * 10));
        player->stopSearch();
        EXPECT_FALSE(player->isSearching());
    }
    EXPECT_EQ(engine.moves, 0);
}

// Whoever holds the game's lock can discard a move that is about to be made.
TEST_F(Player, ADiscardedResultIsNotPlayedHoweverFarItHasCome) {
    control.depthLimited = true;
    control.maxDepth = 1;
    {
        const std::lock_guard held(engine.gameMutex);
        player->startSearch();
        while (!reports.statisticsCame) {
            std::this_thread::yield();
        }
        player->discardResult();  // the move is decided, and waits for the lock
    }
    waitForEnd(1);
    EXPECT_EQ(engine.moves, 0);
    player->startSearch();  // the mark is that search's alone
    waitForEnd(2);
    EXPECT_EQ(engine.moves, 1);
}

TEST_F(Player, EndsByTheClockWithAllThreads) {
    control.baseTime = 500;  // 40 moves in 5 s: 0.11 s, and half as much again out of the book
    player->startSearch();
    waitForEnd(1);
    EXPECT_EQ(engine.moves, 1);
    EXPECT_FALSE(control.clockRunning);
    // Far more than it may overrun: sanitizers and busy machines take their time, too.
    EXPECT_LE(control.timeUsed, 1000U);
    EXPECT_EQ(reports.timesForMove, (std::vector<std::int32_t>{11, 16}));
}

TEST_F(Player, OutOfTheBookGetsMoreTimeUnlessTheSessionIsAboutToEnd) {
    control.depthLimited = true;
    control.maxDepth = 1;
    control.movesPerSession = 9;
    player->startSearch();
    waitForEnd(1);
    EXPECT_EQ(reports.timesForMove.size(), 1U);
    EXPECT_TRUE(player->outOfBook);  // it is not made up for later
    player->outOfBook = false;
    control.movesPerSession = 10;
    player->startSearch();
    waitForEnd(2);
    ASSERT_EQ(reports.timesForMove.size(), 3U);
    EXPECT_EQ(reports.timesForMove[2], reports.timesForMove[1] * 3 / 2);
}

// The increments to come would allow 1.38 s.
TEST_F(Player, PlansNoMoreThanTheClockHoldsAfterTheBookEither) {
    control.movesPerSession = 0;
    control.baseTime = 100;
    control.increment = 100;
    player->startSearch();
    waitForEnd(1);
    ASSERT_EQ(reports.timesForMove.size(), 2U);
    EXPECT_GT(reports.timesForMove[1], 100);  // 138, less if the thread was slow to start
    ASSERT_EQ(reports.clockLimits.size(), 1U);
    EXPECT_LE(reports.clockLimits[0], 95);  // three threads
    EXPECT_EQ(control.timeForMove, reports.clockLimits[0]);
}

TEST_F(Player, TimeToldDuringASearchMayShortenIt) {
    control.baseTime = 100 * 60 * 60;
    player->outOfBook = true;
    player->startSearch();
    while (control.timeForMove == 0) {  // not planned yet
        std::this_thread::yield();
    }
    player->setTimeLeft(100 * 60 * 50);  // plenty
    player->setTimeLeft(20);
    waitForEnd(1);
    EXPECT_EQ(engine.moves, 1);
    EXPECT_EQ(reports.clockLimits.size(), 1U);
    EXPECT_LT(control.timeForMove, 1000);  // of 81 s that were planned
}

// Else the first thinking line would show what a helper that wakes late has from the last search.
TEST(Searcher, IsPreparedWithCountersAtZero) {
    FixedSearch search;
    const auto game = std::make_unique<Game>();
    ASSERT_TRUE(game->setup(startPositionFEN));
    search.run(game->board, 3);
    search.searcher->stopFlag = search.searcher->discardFlag = true;
    search.searcher->prepare(game->board);
    EXPECT_EQ(search.searcher->nodes, 0U);
    EXPECT_EQ(search.searcher->statistics.cutoffs.all, 0U);
    EXPECT_FALSE(search.searcher->stopFlag || search.searcher->discardFlag);
}

// A helper that wakes late must not copy a board that the move is being made on.
TEST_F(Player, TheGameGoesOnBeforeTheHelpersAreIdle) {
    engine.game = &player->game;
    control.depthLimited = true;
    control.maxDepth = 2;
    unsigned moves = 0;
    while (moves < 60 && player->gameResult() == GameResult::Open) {
        player->startSearch();
        waitForEnd(static_cast<int>(++moves));
        ASSERT_EQ(player->game.plyCount, moves);
    }
    EXPECT_GT(moves, 3U);  // no game is over sooner
}

TEST_F(Player, ReportsTheWorkOfAllThreads) {
    control.depthLimited = true;
    control.maxDepth = 6;
    control.baseTime = 100 * 60 * 60;
    player->startSearch();
    waitForEnd(1);
    EXPECT_EQ(reports.stops, std::vector{StopReason::DepthLimit});
    ASSERT_TRUE(reports.statistics);
    EXPECT_TRUE(std::is_sorted(reports.nodes.begin(), reports.nodes.end()));
    EXPECT_GE(reports.statistics->nodes, reports.nodes.back());
    const SearchStatistics& sum = reports.statistics->counters;
    EXPECT_GT(reports.statistics->nodes, sum.qsNodes + sum.cutoffs.all);
    EXPECT_GT(sum.cutoffs.onFirstMove, sum.cutoffs.all / 2);
    EXPECT_LE(sum.cutoffs.onFirstMove, sum.cutoffs.all);
    reports.statistics.reset();
    reports.nodes.clear();
    player->post = false;
    player->startSearch();
    waitForEnd(2);
    EXPECT_TRUE(reports.nodes.empty() && !reports.statistics);
}

TEST_F(Player, AnalysisEndsOnlyWhenStoppedAndPlaysNothing) {
    control.timed = false;
    player->randomMoves = true;  // analysis does not play random moves either
    player->startSearch();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_TRUE(player->isSearching());
    player->preparePlayer(true);  // leaves a running search alone
    player->setTTHashSize(2);
    EXPECT_EQ(player->transpositionTable.sizeInMB(), 4U);
    player->stopSearch();
    EXPECT_EQ(engine.moves, 0);
    player->preparePlayer(false);
    EXPECT_EQ(player->transpositionTable.sizeInMB(), 2U);
    EXPECT_EQ(reports.tableSizes, (std::vector{4U, 1U, 2U}));
}

// Whatever way the tables are emptied, a game finds them as the first one did.
TEST_F(Player, ANewGameStartsWithEmptyTables) {
    control.depthLimited = true;
    control.maxDepth = 6;
    control.baseTime = 100 * 60 * 60;
    player->requestedCores = 1;
    std::uint64_t first = 0;
    for (int searches = 1; searches <= 6; ++searches) {
        player->preparePlayer(true);
        if (searches % 2 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(50));
        player->startSearch();
        waitForEnd(searches);
        ASSERT_TRUE(reports.statistics);
        if (searches == 1) first = reports.statistics->nodes;
        EXPECT_EQ(reports.statistics->nodes, first);
    }
    EXPECT_EQ(reports.tableSizes.size(), 14U);  // two at the start, two for each new game
}

TEST_F(Player, RandomModeMovesAtOnce) {
    player->randomMoves = true;
    for (int searches = 1; searches <= 20; ++searches) {
        player->startSearch();
        waitForEnd(searches);
        EXPECT_EQ(engine.moves, searches);
    }
}

TEST_F(Player, DestructionEndsARunningSearch) {
    player->startSearch();
    player.reset();
    EXPECT_EQ(engine.moves, 0);
}

TEST_F(Player, KnowsHowTheGameHasEnded) {
    const std::pair<const char*, GameResult> cases[] = {
        {startPositionFEN, GameResult::Open},
        {"7k/5K2/6Q1/8/8/8/8/8 b - - 0 1", GameResult::Stalemate},
        {"7k/5KQ1/8/8/8/8/8/8 b - - 0 1", GameResult::WhiteMates},
        {"8/8/8/8/8/8/1q6/K1k5 w - - 0 1", GameResult::BlackMates},
        {"8/8/8/4k3/8/8/8/KB6 w - - 0 1", GameResult::InsufficientMaterial},
        {"8/8/8/4k3/8/8/8/KR6 w - - 100 90", GameResult::Open},  // a draw only when claimed
    };
    for (const auto& [fen, result] : cases) {
        SCOPED_TRACE(fen);
        ASSERT_TRUE(player->game.setup(fen));
        EXPECT_EQ(player->gameResult(), result);
    }
}

TEST_F(Player, OffersADrawOnlyWhenTheMoveAllowsTheClaim) {
    Game& game = player->game;
    const auto play = [&](Square from, Square to) {
        game.play(makeMoveWord(from, to));
        EXPECT_EQ(player->gameResult(),
                  GameResult::Open);  // as after every move; counts repetitions
    };
    for (int round = 0; round < 2; ++round) {
        play(G1, F3);
        play(G8, F6);
        play(F3, G1);
        if (round == 0) {
            EXPECT_FALSE(player->shouldOfferDraw(makeMoveWord(F6, G8)));  // second occurrence
            play(F6, G8);
        }
    }
    EXPECT_TRUE(player->shouldOfferDraw(makeMoveWord(F6, G8)));
    EXPECT_TRUE(isConsistent(game.board));
    ASSERT_TRUE(game.setup("7k/5K2/8/6Q1/8/8/8/8 w - - 99 80"));
    EXPECT_FALSE(player->shouldOfferDraw(makeMoveWord(G5, G6)));  // stalemate comes first
    EXPECT_TRUE(player->shouldOfferDraw(makeMoveWord(G5, A5)));
}

}  // namespace
}  // namespace vatro
