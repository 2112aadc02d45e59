// tests/search/player_test.cpp - threads that start, stop and hand over a move.
#include <chrono>
#include <thread>

#include <gtest/gtest.h>

#include "board/attacks.h"
#include "search/chess_player.h"

namespace vatro {
namespace {

struct MoveCatcher final : EngineInterface {
    void makeEngineMove(Move move) override {
        caught = move;
        ++moves;
    }
    void searchEnded() override { ++ended; }

    Move caught = NoMove;
    int moves = 0;
    std::atomic<int> ended{0};
};

struct Player : testing::Test {
    void SetUp() override {
        player->ttHashSizeMB = 4;
        player->pawnHashSizeMB = 1;
        player->post = false;
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
    std::unique_ptr<ChessPlayer> player = std::make_unique<ChessPlayer>(control, &engine);
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

TEST_F(Player, EndsByTheClockWithAllThreads) {
    control.baseTime = 500;  // 40 moves in 5 s: 0.11 s, and half as much again out of the book
    player->startSearch();
    waitForEnd(1);
    EXPECT_EQ(engine.moves, 1);
    EXPECT_FALSE(control.clockRunning);
    // Far more than it may overrun: sanitizers and busy machines take their time, too.
    EXPECT_LE(control.timeUsed, 1000U);
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

TEST_F(Player, OffersADrawOnlyWhenTheMoveAllowsTheClaim) {
    Game& game = player->game;
    const auto play = [&](int from, int to) {
        game.play(makeMoveWord(from, to));
        EXPECT_FALSE(player->checkGameResult());  // as after every move; counts repetitions
    };
    const int g1 = toSq64(G1), f3 = 21, g8 = toSq64(G8), f6 = 45;
    for (int round = 0; round < 2; ++round) {
        play(g1, f3);
        play(g8, f6);
        play(f3, g1);
        if (round == 0) {
            EXPECT_FALSE(player->shouldOfferDraw(makeMoveWord(f6, g8)));  // second occurrence
            play(f6, g8);
        }
    }
    EXPECT_TRUE(player->shouldOfferDraw(makeMoveWord(f6, g8)));
    EXPECT_TRUE(isConsistent(game.board));
    ASSERT_TRUE(game.setup("7k/5K2/8/6Q1/8/8/8/8 w - - 99 80"));
    EXPECT_FALSE(player->shouldOfferDraw(makeMoveWord(38, 46)));  // stalemate comes first
    EXPECT_TRUE(player->shouldOfferDraw(makeMoveWord(38, 32)));
}

}  // namespace
}  // namespace vatro
