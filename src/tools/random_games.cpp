// tools/random_games.cpp - playing the games and keeping and printing their statistics.
//
// How long a piece stands on a square is added up when it leaves the square, not at every position:
// a move then costs a few additions instead of a walk over all pieces.
#include "tools/random_games.h"

#include <algorithm>
#include <cassert>
#include <memory>
#include <string>

#include "board/console.h"
#include "board/draw.h"
#include "board/move_generation.h"

namespace vatro {
namespace {

using Count = std::uint64_t;

constexpr unsigned ProgressMarks = 50;  // in a long run
constexpr unsigned LengthBuckets = 40;  // lines of the table of game lengths; the last is open
constexpr unsigned PliesPerBucket = 20;

/// How many pieces of a type a side starts with, by PieceType.
constexpr unsigned maxPieces[PieceTypeCount] = {0, 8, 2, 2, 2, 1, 1};

struct RandomGameStats {
    Count games = 0;
    Count positions = 0;  // one for each move
    Count captures = 0;   // ordinary ones: neither en passant nor with promotion
    Count promotions = 0;
    Count castlings = 0;
    Count epCaptures = 0;
    Count doubleSteps = 0;
    Count movesOfPiece[PieceTypeCount] = {};
    Count capturesOfPiece[PieceTypeCount] = {};  // with en passant
    Count promotionsInto[PieceTypeCount] = {};
    Count presence[ColourCount][PieceTypeCount][64] = {};  // positions with the piece on a square
    Count pieceCount[ColourCount][SlotCount + 1] = {};     // positions with so many pieces
    Count gameLength[Game::MaxMoves + 1] = {};             // games with so many moves
};

/// Plays one game and adds it to the statistics.
class RandomGame {
  public:
    /// `record` holds the start position.
    RandomGame(Game& record, RandomGameStats& sums) : game(record), stats(sums) {
        std::fill(std::begin(arrival), std::end(arrival), 1U);  // the first position that counts
    }

    void play() {
        ++stats.games;
        DrawReason reason;
        do {
            if (game.isFull()) break;
            const Move move = drawLegalMove(game.board);
            if (move == NoMove) break;
            count(move);
            game.play(move);
            ++stats.pieceCount[White][game.board.totalCount(White)];
            ++stats.pieceCount[Black][game.board.totalCount(Black)];
        } while (!isDraw(game.board, reason));
        ++stats.gameLength[game.plyCount];
        for (int sq64 = 0; sq64 < 64; ++sq64) {
            if (game.board.pieceOn[toSquare(sq64)] != NoPiece) leave(sq64);
        }
    }

  private:
    void count(Move move);

    /// Adds up the stay of the piece on a square. The next move, or the game's end, removes it.
    void leave(int sq64) {
        const Square square = toSquare(sq64);
        Count& presence =
            stats.presence[game.board.colourOn[square]][game.board.pieceOn[square]][sq64];
        presence += nextPosition() - arrival[sq64];
    }
    void relocate(int from, int to) {
        leave(from);
        arrival[to] = nextPosition();
    }
    unsigned nextPosition() const { return game.plyCount + 1; }

    Game& game;
    RandomGameStats& stats;
    unsigned arrival[64];  // by sq64: number of the first position with the piece that stands there
};

void RandomGame::count(Move move) {
    const Board_0x88& board = game.board;
    const PieceType victim = board.pieceAt(toSquareOf(move));
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

std::string averagesText(const RandomGameStats& stats) {
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

std::string presenceText(const RandomGameStats& stats, Colour colour, PieceType type) {
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

std::string pieceCountText(const RandomGameStats& stats, Colour colour) {
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

std::string gameLengthText(const RandomGameStats& stats) {
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

std::string statisticsText(const RandomGameStats& stats) {
    std::string text = averagesText(stats);
    for (const Colour colour : {White, Black}) {
        for (int type = Pawn; type <= King; ++type) {
            text += presenceText(stats, colour, static_cast<PieceType>(type));
        }
    }
    return text + pieceCountText(stats, White) + pieceCountText(stats, Black) +
           gameLengthText(stats);
}

void setupStart(Game& game) {
    const bool accepted = game.setup(startPositionFEN);
    assert(accepted);
    static_cast<void>(accepted);
}

}  // namespace

void playRandomGames(Game& game, unsigned long games) {
    say(formatted("# Playing %lu random games ...\n", games));
    const auto stats = std::make_unique<RandomGameStats>();
    const unsigned long interval = std::max(games / ProgressMarks, 1UL);  // few games: a mark each
    for (unsigned long i = 0; i < games; ++i) {
        setupStart(game);
        RandomGame(game, *stats).play();
        if (i % interval == 0) say("#");
    }
    say("\ncalculate average values ...\n" + statisticsText(*stats));
    setupStart(game);
}

}  // namespace vatro
