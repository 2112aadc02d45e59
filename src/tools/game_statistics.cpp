// tools/game_statistics.cpp - counting the moves of a game and printing the sums.
#include "tools/game_statistics.h"

#include <algorithm>

#include "base/text.h"

namespace vatro {
namespace {

using Count = GameStatistics::Count;

constexpr unsigned LengthBuckets = 40;  // lines of the table of game lengths; the last is open
constexpr unsigned PliesPerBucket = 20;

/// How many pieces of a type a side starts with, by PieceType.
constexpr unsigned maxPieces[PieceTypeCount] = {0, 8, 2, 2, 2, 1, 1};

/// `count` values, each formatted alike, with a blank between them and a line end behind.
template <typename ValueAt>
std::string row(const char* format, int count, ValueAt valueAt) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        if (i > 0) text += ' ';
        text += formatted(format, valueAt(i));
    }
    return text + '\n';
}

std::string averagesText(const GameStatistics& stats) {
    const auto number = [](Count value) { return static_cast<unsigned long long>(value); };
    const auto perGame = [&](Count value) {
        return static_cast<double>(value) / static_cast<double>(stats.games);
    };
    const auto perGameByType = [&](const Count(&counts)[PieceTypeCount]) {
        return row("%6.2f", King, [&](int i) { return perGame(counts[Pawn + i]); });
    };
    return formatted("Total games:                        %10llu\n", number(stats.games)) +
           formatted("Total positions:                    %10llu\n", number(stats.positions)) +
           formatted("Avg. moves/game:                    %6.2f\n", perGame(stats.positions)) +
           formatted("Avg. captures/game:                 %6.2f\n", perGame(stats.captures)) +
           formatted("Avg. promotions/game:               %6.2f\n", perGame(stats.promotions)) +
           formatted("Avg. castlings/game:                %6.2f\n", perGame(stats.castlings)) +
           formatted("Avg. ep captures/game:              %6.2f\n", perGame(stats.epCaptures)) +
           formatted("Avg. double steps/game:             %6.2f\n", perGame(stats.doubleSteps)) +
           "Avg. moves of piece/game:           " + perGameByType(stats.movesOfPiece) +
           "Avg. captures of piece/game:        " + perGameByType(stats.capturesOfPiece) +
           "Avg. promotions into piece/game:    " + perGameByType(stats.promotionsInto);
}

std::string presenceText(const GameStatistics& stats, Colour colour, PieceType type) {
    const Count* counts = stats.presence[colour][type];
    const double whole = static_cast<double>(stats.positions) * maxPieces[type];
    const auto percent = [&](Count value) { return static_cast<double>(value) * 100 / whole; };
    std::string text = formatted("Avg. presence of %d %d:\n", colour, type);
    Count sum = 0;
    for (int rank = 7; rank >= 0; --rank) {
        text += row("%5.1f", 8, [&](int file) {
            sum += counts[rank * 8 + file];
            return percent(counts[rank * 8 + file]);
        });
    }
    return text + formatted("[%5.1f]\n", percent(sum));
}

std::string pieceCountText(const GameStatistics& stats, Colour colour) {
    const auto percentFrom = [&](int first) {
        return row("%5.1f", 8, [&, first](int i) {
            return static_cast<double>(stats.pieceCount[colour][first + i]) * 100 /
                   static_cast<double>(stats.positions);
        });
    };
    return formatted("Frequency of positions with given number of %s pieces:\n",
                     colour == White ? "white" : "black") +
           percentFrom(1) + percentFrom(9);
}

std::string gameLengthText(const GameStatistics& stats) {
    Count buckets[LengthBuckets] = {};
    for (unsigned length = 0; length <= Game::MaxMoves; ++length) {
        buckets[std::min(length / PliesPerBucket, LengthBuckets - 1)] += stats.gameLength[length];
    }
    std::string text = "Game length:\n";
    for (unsigned i = 0; i < LengthBuckets; ++i) {
        const unsigned first = i * PliesPerBucket;
        text += formatted("%4u .. %4u: %5.2f\n", first, first + PliesPerBucket - 1,
                          static_cast<double>(buckets[i]) * 100 / static_cast<double>(stats.games));
    }
    return text;
}

}  // namespace

GameCounter::GameCounter(const Game& record, GameStatistics& sums) : game(record), stats(sums) {
    std::fill(std::begin(arrival), std::end(arrival), nextPosition());  // the start is not counted
    ++stats.games;
}

void GameCounter::leave(Square64 square) {
    const Square square88 = as88(square);
    Count& presence =
        stats.presence[game.board.colourOn[square88]][game.board.pieceOn[square88]][square];
    presence += nextPosition() - arrival[square];
}

void GameCounter::relocate(Square64 from, Square64 to) {
    leave(from);
    arrival[to] = nextPosition();
}

void GameCounter::beforeMove(Move move) {
    const Board_0x88& board = game.board;
    const PieceType victim = board.pieceAt(toSquare(move));
    ++stats.positions;
    ++stats.movesOfPiece[board.pieceOn[fromSquare(move)]];
    if (victim != NoPiece) leave(to64(move));
    relocate(from64(move), to64(move));
    switch (typeOf(move)) {
        case Promotion:
            ++stats.promotions;
            ++stats.promotionsInto[promotionPiece(move)];
            break;
        case Castling: {
            const bool kingSide = to64(move) > from64(move);
            ++stats.castlings;
            relocate(to64(move) + (kingSide ? 1 : -2), to64(move) + (kingSide ? -1 : 1));
            break;
        }
        case EnPassant:
            ++stats.epCaptures;
            ++stats.capturesOfPiece[Pawn];
            leave(to64(move) + (board.sideToMove == White ? -8 : 8));
            break;
        case Normal:
            if (victim != NoPiece) {
                ++stats.captures;
                ++stats.capturesOfPiece[victim];
            } else if (extraOf(move) == DoubleStep) {
                ++stats.doubleSteps;
            }
            break;
    }
}

void GameCounter::afterMove() {
    ++stats.pieceCount[White][game.board.totalCount(White)];
    ++stats.pieceCount[Black][game.board.totalCount(Black)];
}

void GameCounter::endOfGame() {
    ++stats.gameLength[game.plyCount];
    for (const Square64 square : allSquares) {
        if (game.board.pieceOn[as88(square)] != NoPiece) leave(square);
    }
}

std::string statisticsText(const GameStatistics& stats) {
    std::string text = averagesText(stats);
    for (const Colour colour : {White, Black}) {
        for (int type = Pawn; type <= King; ++type) {
            text += presenceText(stats, colour, static_cast<PieceType>(type));
        }
    }
    return text + pieceCountText(stats, White) + pieceCountText(stats, Black) +
           gameLengthText(stats);
}

}  // namespace vatro
