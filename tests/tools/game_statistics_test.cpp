// tests/tools/game_statistics_test.cpp - one game counted by hand, sums turned into text by hand,
// and many games against a walk over every position.
#include "tools/game_statistics.h"

#include <cstring>

#include "board/draw.h"
#include "support.h"

namespace vatro {
namespace {

struct CountedGames : testing::Test {
    void start(const char* fen) {
        ASSERT_TRUE(game->setup(fen));
        counter = std::make_unique<GameCounter>(*game, *stats);
    }
    void play(Move move) {
        ASSERT_NE(move, NoMove);
        counter->beforeMove(move);
        game->play(move);
        counter->afterMove();
    }
    GameStatistics::Count presence(Colour colour, PieceType type, Square square) const {
        return stats->presence[colour][type][as64(square)];
    }

    std::unique_ptr<Game> game = std::make_unique<Game>();
    std::unique_ptr<GameStatistics> stats = std::make_unique<GameStatistics>();
    std::unique_ptr<GameCounter> counter;
};

TEST_F(CountedGames, EveryKindOfMove) {
    start(startPositionFEN);
    for (const char* move : {"e2e4", "d7d5", "e4d5", "c7c5", "d5c6", "g8f6", "c6b7", "e7e6",
                             "b7a8q", "f8e7", "g1f3", "e8g8", "f1e2", "h7h6", "e1g1"}) {
        play(findMove(game->board, move));
    }
    counter->endOfGame();

    EXPECT_EQ(stats->games, 1U);
    EXPECT_EQ(stats->positions, 15U);
    EXPECT_EQ(stats->captures, 2U);
    EXPECT_EQ(stats->promotions, 1U);
    EXPECT_EQ(stats->castlings, 2U);
    EXPECT_EQ(stats->epCaptures, 1U);
    EXPECT_EQ(stats->doubleSteps, 3U);
    const auto byType = [](const GameStatistics::Count(&counts)[PieceTypeCount]) {
        return std::vector<GameStatistics::Count>(counts + Pawn, counts + PieceTypeCount);
    };
    using Counts = std::vector<GameStatistics::Count>;
    EXPECT_EQ(byType(stats->movesOfPiece), (Counts{9, 2, 2, 0, 0, 2}));
    EXPECT_EQ(byType(stats->capturesOfPiece), (Counts{3, 0, 0, 0, 0, 0}));
    EXPECT_EQ(byType(stats->promotionsInto), (Counts{0, 0, 0, 0, 1, 0}));
    EXPECT_EQ(stats->gameLength[15], 1U);
    EXPECT_EQ(stats->pieceCount[White][16], 15U);
    EXPECT_EQ(stats->pieceCount[Black][16], 2U);
    EXPECT_EQ(stats->pieceCount[Black][12], 7U);

    struct Stay {
        Colour colour;
        PieceType type;
        Square square;
        unsigned positions;  // the start is not one of them
    };
    const Stay stays[] = {{White, Pawn, E2, 0},  {White, Pawn, E4, 2},  {White, Pawn, C6, 2},
                          {White, Pawn, B7, 2},  {White, Queen, A8, 7}, {White, King, E1, 14},
                          {White, King, G1, 1},  {White, Rook, H1, 14}, {White, Rook, F1, 1},
                          {White, Rook, A1, 15}, {Black, Pawn, D5, 1},  {Black, Pawn, C5, 1},
                          {Black, Pawn, B7, 6},  {Black, Rook, A8, 8},  {Black, Rook, H8, 11},
                          {Black, Rook, F8, 4},  {Black, King, G8, 4},  {Black, Bishop, F8, 9}};
    for (const auto& [colour, type, square, positions] : stays) {
        EXPECT_EQ(presence(colour, type, square), positions)
            << pieceLetters[type] << squareText(as64(square));
    }
}

TEST_F(CountedGames, StaysAddUpToAWalkOverEveryPosition) {
    auto walked = std::make_unique<GameStatistics>();
    TestRandom random(20);
    for (int i = 0; i < 60; ++i) {
        start(richPositions[random.below(std::size(richPositions))]);
        const Board_0x88& board = game->board;
        for (DrawReason reason; !game->isFull();) {
            MoveList list;
            generateLegalMoves(board, list);
            if (list.count == 0) break;
            play(list.moves[random.below(list.count)].move());
            for (const Square64 square64 : allSquares) {
                const Square square = as88(square64);
                if (board.pieceOn[square] == NoPiece) continue;
                ++walked->presence[board.colourAt(square)][board.pieceAt(square)][square64];
            }
            if (isDraw(game->board, reason)) break;
        }
        counter->endOfGame();
    }
    EXPECT_GT(stats->positions, 5000U);
    EXPECT_EQ(std::memcmp(stats->presence, walked->presence, sizeof stats->presence), 0);
}

TEST(GameStatistics, AreShownAsAveragesAndPercentages) {
    GameStatistics stats;
    stats.games = 4;
    stats.positions = 200;
    stats.captures = 10;
    stats.promotions = 1;
    stats.castlings = 3;
    stats.epCaptures = 0;
    stats.doubleSteps = 30;
    for (int type = Pawn; type <= King; ++type) {
        stats.movesOfPiece[type] = GameStatistics::Count{10} * type;
    }
    stats.capturesOfPiece[Queen] = 6;
    stats.promotionsInto[Knight] = 1;
    stats.presence[White][Pawn][as64(A2)] = 120;  // 120 / (8 pawns * 200 positions)
    stats.presence[White][Pawn][as64(H8)] = 8;
    stats.presence[Black][King][as64(E8)] = 150;
    stats.pieceCount[White][1] = 50;
    stats.pieceCount[White][16] = 150;
    stats.pieceCount[Black][8] = 200;
    stats.gameLength[0] = 1;
    stats.gameLength[19] = 1;
    stats.gameLength[20] = 1;
    stats.gameLength[1000] = 1;  // the last line is open
    const std::string text = statisticsText(stats);

    const std::string averages =
        "Total games:                                 4\n"
        "Total positions:                           200\n"
        "Avg. moves/game:                     50.00\n"
        "Avg. captures/game:                   2.50\n"
        "Avg. promotions/game:                 0.25\n"
        "Avg. castlings/game:                  0.75\n"
        "Avg. ep captures/game:                0.00\n"
        "Avg. double steps/game:               7.50\n"
        "Avg. moves of piece/game:             2.50   5.00   7.50  10.00  12.50  15.00\n"
        "Avg. captures of piece/game:          0.00   0.00   0.00   0.00   1.50   0.00\n"
        "Avg. promotions into piece/game:      0.00   0.25   0.00   0.00   0.00   0.00\n";
    const std::string whitePawns =
        "Avg. presence of 0 1:\n"
        "  0.0   0.0   0.0   0.0   0.0   0.0   0.0   0.5\n"
        "  0.0   0.0   0.0   0.0   0.0   0.0   0.0   0.0\n"
        "  0.0   0.0   0.0   0.0   0.0   0.0   0.0   0.0\n"
        "  0.0   0.0   0.0   0.0   0.0   0.0   0.0   0.0\n"
        "  0.0   0.0   0.0   0.0   0.0   0.0   0.0   0.0\n"
        "  0.0   0.0   0.0   0.0   0.0   0.0   0.0   0.0\n"
        "  7.5   0.0   0.0   0.0   0.0   0.0   0.0   0.0\n"
        "  0.0   0.0   0.0   0.0   0.0   0.0   0.0   0.0\n"
        "[  8.0]\n";
    EXPECT_EQ(text.substr(0, averages.size() + whitePawns.size()), averages + whitePawns);
    const std::string blackKing =
        "Avg. presence of 1 6:\n"
        "  0.0   0.0   0.0   0.0  75.0   0.0   0.0   0.0\n";
    const std::string counts =
        "[ 75.0]\n"
        "Frequency of positions with given number of white pieces:\n"
        " 25.0   0.0   0.0   0.0   0.0   0.0   0.0   0.0\n"
        "  0.0   0.0   0.0   0.0   0.0   0.0   0.0  75.0\n"
        "Frequency of positions with given number of black pieces:\n"
        "  0.0   0.0   0.0   0.0   0.0   0.0   0.0 100.0\n"
        "  0.0   0.0   0.0   0.0   0.0   0.0   0.0   0.0\n"
        "Game length:\n"
        "   0 ..   19: 50.00\n"
        "  20 ..   39: 25.00\n"
        "  40 ..   59:  0.00\n";
    EXPECT_NE(text.find(blackKing), std::string::npos);
    EXPECT_NE(text.find(counts), std::string::npos);
    EXPECT_TRUE(text.ends_with("\n 760 ..  779:  0.00\n 780 ..  799: 25.00\n"));
}

}  // namespace
}  // namespace vatro
