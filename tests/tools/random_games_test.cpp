// The statistics against the same games counted position by position.
#include "tools/random_games.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "board/console.h"
#include "board/draw.h"
#include "support.h"

namespace vatro {
namespace {

std::string outputOf(unsigned long games) {
    const auto game = std::make_unique<Game>();
    testing::internal::CaptureStdout();
    playRandomGames(*game, games);
    std::string text = testing::internal::GetCapturedStdout();
    EXPECT_EQ(game->plyCount, 0U);
    EXPECT_EQ(game->board.toFEN(), startPositionFEN);
    return text;
}

/// The lines after "calculate average values", from a plain count of all games.
std::string expectedStatistics(int games) {
    std::uint64_t positions = 0;
    std::uint64_t captures = 0, promotions = 0, castlings = 0, epCaptures = 0, doubleSteps = 0;
    std::uint64_t moved[7] = {}, taken[7] = {}, into[7] = {};
    std::uint64_t presence[2][7][64] = {};
    std::uint64_t pieceCount[2][17] = {};
    std::uint64_t lengths[40] = {};
    const auto game = std::make_unique<Game>();
    const Board_0x88& board = game->board;
    for (int i = 0; i < games; ++i) {
        EXPECT_TRUE(game->setup(startPositionFEN));
        for (DrawReason reason; !game->isFull();) {
            MoveList list;
            generateLegalMoves(board, list);
            const Move move = pickRandomMove(list);
            if (move == NoMove) break;
            ++positions;
            ++moved[board.pieceOn[fromSquare(move)]];
            const int victim = board.pieceOn[toSquareOf(move)];
            if (isPromotion(move)) {
                ++promotions;
                ++into[promotionPiece(move)];
            } else if (typeOf(move) == Castling) {
                ++castlings;
            } else if (typeOf(move) == EnPassant) {
                ++epCaptures;
                ++taken[Pawn];
            } else if (victim) {
                ++captures;
                ++taken[victim];
            } else if (extraOf(move) == DoubleStep) {
                ++doubleSteps;
            }
            game->play(move);
            ++pieceCount[White][board.totalCount(White)];
            ++pieceCount[Black][board.totalCount(Black)];
            for (int sq64 = 0; sq64 < 64; ++sq64) {
                const Square square = toSquare(sq64);
                if (board.pieceOn[square])
                    ++presence[board.colourOn[square]][board.pieceOn[square]][sq64];
            }
            if (isDraw(game->board, reason)) break;
        }
        ++lengths[std::min(game->plyCount / 20, 39U)];
    }
    const double g = games;
    const auto p = static_cast<double>(positions);
    std::string text = formatted("Total games:                        %10d\n", games) +
                       formatted("Total positions:                    %10llu\n",
                                 static_cast<unsigned long long>(positions)) +
                       formatted("Avg. moves/game:                    %6.2f\n", p / g) +
                       formatted("Avg. captures/game:                 %6.2f\n",
                                 static_cast<double>(captures) / g) +
                       formatted("Avg. promotions/game:               %6.2f\n",
                                 static_cast<double>(promotions) / g) +
                       formatted("Avg. castlings/game:                %6.2f\n",
                                 static_cast<double>(castlings) / g) +
                       formatted("Avg. ep captures/game:              %6.2f\n",
                                 static_cast<double>(epCaptures) / g) +
                       formatted("Avg. double steps/game:             %6.2f\n",
                                 static_cast<double>(doubleSteps) / g);
    const std::pair<const char*, std::uint64_t*> byPiece[] = {
        {"Avg. moves of piece/game:           ", moved},
        {"Avg. captures of piece/game:        ", taken},
        {"Avg. promotions into piece/game:    ", into}};
    for (const auto& [title, counts] : byPiece) {
        text += title;
        for (int type = 1; type <= 6; ++type) {
            text +=
                formatted(type == 6 ? "%6.2f\n" : "%6.2f ", static_cast<double>(counts[type]) / g);
        }
    }
    const int most[] = {0, 8, 2, 2, 2, 1, 1};
    for (int colour = 0; colour < 2; ++colour) {
        for (int type = 1; type <= 6; ++type) {
            text += formatted("Avg. presence of %d %d:\n", colour, type);
            std::uint64_t sum = 0;
            for (int rank = 7; rank >= 0; --rank) {
                for (int file = 0; file < 8; ++file) {
                    const std::uint64_t count = presence[colour][type][rank * 8 + file];
                    sum += count;
                    text += formatted(file == 7 ? "%5.1f\n" : "%5.1f ",
                                      static_cast<double>(count) * 100 / (p * most[type]));
                }
            }
            text += formatted("[%5.1f]\n", static_cast<double>(sum) * 100 / (p * most[type]));
        }
    }
    for (int colour = 0; colour < 2; ++colour) {
        text += formatted("Frequency of positions with given number of %s pieces:\n",
                          colour ? "black" : "white");
        for (int k = 1; k <= 16; ++k) {
            text += formatted(k % 8 ? "%5.1f " : "%5.1f\n",
                              static_cast<double>(pieceCount[colour][k]) * 100 / p);
        }
    }
    text += "Game length:\n";
    for (int bucket = 0; bucket < 40; ++bucket) {
        text += formatted("%4d .. %4d: %5.2f\n", bucket * 20, bucket * 20 + 19,
                          static_cast<double>(lengths[bucket]) * 100 / g);
    }
    return text;
}

TEST(RandomGames, StatisticsAreThoseOfAPlainCount) {
    std::srand(20);
    const std::string output = outputOf(200);
    std::srand(20);
    EXPECT_EQ(output, "# Playing 200 random games ...\n" + std::string(50, '#') +
                          "\ncalculate average values ...\n" + expectedStatistics(200));
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

}  // namespace
}  // namespace vatro
