// tests/engine/self_play_test.cpp - timed games of the built engine against itself.
//
// A referee plays the interface: it keeps the clocks, checks every move and every result with the
// board's rules, and takes any other line than the protocol's for a fault.
#include <algorithm>
#include <array>
#include <cctype>
#include <memory>
#include <ostream>
#include <random>

#include <gtest/gtest.h>

#include "base/text.h"
#include "board/attacks.h"
#include "board/draw.h"
#include "board/game.h"
#include "board/move_generation.h"
#include "engine/session.h"

namespace vatro::test {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VATRO_IS_SANITIZED
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define VATRO_IS_SANITIZED
#endif
#endif
// A sanitized engine is too slow to be held to its clock: it looks at it every few thousand nodes.
// There the games are few and shallow, and look for faults in the engine only.
#ifdef VATRO_IS_SANITIZED
constexpr bool HoldsToTheClock = false;
constexpr unsigned GamesOnOneCore = 4;
constexpr unsigned GamesOnTwoCores = 2;
constexpr char depthLimit[] = "\nsd 2";
#else
constexpr bool HoldsToTheClock = true;
constexpr unsigned GamesOnOneCore = 16;
constexpr unsigned GamesOnTwoCores = 4;
constexpr char depthLimit[] = "";
#endif

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

struct Match {
    const char* start;    // FEN
    int movesPerSession;  // 0: one session is the whole game
    int baseSeconds;
    int cores;
    unsigned seed;
};

// NOLINTNEXTLINE(readability-identifier-naming): the name is GoogleTest's
void PrintTo(const Match& match, std::ostream* stream) { *stream << "seed " << match.seed; }

class Referee {
  public:
    explicit Referee(const Match& rules) : match(rules), random(rules.seed) {
        for (auto& engine : engines) {
            engine = std::make_unique<Session>(Lines{"-cores", std::to_string(match.cores)});
        }
        EXPECT_TRUE(game->setup(match.start));
    }

    /// Plays one game; the result line, empty after a failure.
    std::string play();

  private:
    Session& toMove() { return *engines[game->board.sideToMove]; }
    Session& other() { return *engines[game->board.sideToMove ^ 1]; }
    void openGame();
    std::string result();
    Move readMove();
    Move findMove(const std::string& text);
    bool expectResult(Session& engine, const std::string& line);

    const Match match;
    std::mt19937 random;
    std::array<std::unique_ptr<Session>, ColourCount> engines;
    std::array<milliseconds, ColourCount> clocks{};
    std::unique_ptr<Game> game = std::make_unique<Game>();
    bool drawOffered = false;
};

Move Referee::findMove(const std::string& text) {
    MoveList list;
    generateLegalMoves(game->board, list);
    for (const ScoredMove& entry : list) {
        if (moveToText(entry.move()) == text) return entry.move();
    }
    return NoMove;
}

/// Four random moves, so that no two games are alike.
void Referee::openGame() {
    std::string moves;
    for (int i = 0; i < 4; ++i) {
        MoveList list;
        generateLegalMoves(game->board, list);
        const Move move = list.moves[random() % list.count].move();
        moves += "\nusermove " + moveToText(move);
        game->play(move);
    }
    const std::string setUp = formatted("level %d 0:%d 0%s\nsetboard %s", match.movesPerSession,
                                        match.baseSeconds, depthLimit, match.start);
    for (const auto& engine : engines) {
        EXPECT_EQ(Lines(), engine->answersTo(setUp + moves));
    }
    clocks.fill(std::chrono::seconds(match.baseSeconds));
}

/// What the rules say about the position; a draw that has to be claimed is claimed.
std::string Referee::result() {
    MoveList list;
    generateLegalMoves(game->board, list);
    if (list.count == 0) {
        if (!inCheck(game->board)) return "1/2-1/2 {Stalemate}";
        return game->board.sideToMove == White ? "0-1 {Black wins by checkmate}"
                                               : "1-0 {White wins by checkmate}";
    }
    DrawReason reason;
    if (!isDraw(game->board, reason)) return {};
    if (reason == DrawReason::InsufficientMaterial)
        return "1/2-1/2 {Draw by insufficient material}";
    return reason == DrawReason::None ? "" : "claimed draw";
}

/// Reads the engine's lines up to its move, which must be legal; NoMove after a fault.
Move Referee::readMove() {
    drawOffered = false;
    milliseconds& clock = clocks[game->board.sideToMove];
    const milliseconds before = clock;
    const Clock::time_point start = Clock::now();
    std::string report;  // of the engine's thinking
    while (const auto line = toMove().process.readLine()) {
        report += *line + '\n';
        if (line->starts_with("move ")) {
            clock -= std::chrono::duration_cast<milliseconds>(Clock::now() - start);
            EXPECT_TRUE(!HoldsToTheClock || clock.count() >= 0)
                << clock.count() << " ms left: lost on time, had " << before.count() << '\n'
                << report;
            const Move move = findMove(line->substr(5));
            EXPECT_NE(NoMove, move) << *line << " in " << game->board.toFEN();
            return move;
        }
        if (*line == "offer draw") {
            drawOffered = true;
        } else if (line->empty() || (line->front() != '#' && !std::isdigit(line->front()))) {
            ADD_FAILURE() << "unexpected: " << *line;
            return NoMove;
        }
    }
    ADD_FAILURE() << "no move in " << game->board.toFEN();
    return NoMove;
}

/// A draw that has to be claimed is not announced.
bool Referee::expectResult(Session& engine, const std::string& line) {
    Lines results = engine.answersTo("");
    std::erase_if(results, [](const std::string& text) {
        return !text.starts_with("1-0") && !text.starts_with("0-1") && !text.starts_with("1/2");
    });
    EXPECT_EQ(line == "claimed draw" ? Lines() : Lines({line}), results);
    return !testing::Test::HasFailure();
}

std::string Referee::play() {
    openGame();
    std::string line = "go";
    for (;;) {
        const int side = game->board.sideToMove;
        Session& engine = toMove();
        for (const int colour : {side, side ^ 1}) {
            engine.send((colour == side ? "time " : "otim ") +
                        std::to_string(clocks[colour].count() / 10));
        }
        engine.send(line);
        const Move move = readMove();
        if (move == NoMove || testing::Test::HasFailure()) return {};
        game->play(move);
        const unsigned movesOfSide = (game->plyCount + 1) / 2;
        if (match.movesPerSession && movesOfSide % match.movesPerSession == 0) {
            clocks[side] += std::chrono::seconds(match.baseSeconds);
        }
        const std::string ending = result();
        EXPECT_EQ(ending == "claimed draw", drawOffered) << game->board.toFEN();
        // The other engine takes the side to move with its first move of the game.
        line = "usermove " + moveToText(move);
        if (game->plyCount == 5) line += "\ngo";
        if (ending.empty()) continue;
        // Here the engine that made the move comes second: the side to move has changed.
        toMove().send("force\nusermove " + moveToText(move));
        return expectResult(other(), ending) && expectResult(toMove(), ending) ? ending
                                                                               : std::string();
    }
}

class SelfPlay : public testing::TestWithParam<Match> {};

TEST_P(SelfPlay, PlaysACompleteGame) {
    const std::string result = Referee(GetParam()).play();
    EXPECT_FALSE(result.empty());
    RecordProperty("result", result);
}

std::vector<Match> games(unsigned count, const Match& rules) {
    std::vector<Match> all(count, rules);
    for (unsigned i = 0; i < count; ++i) {
        all[i].seed += i;
    }
    return all;
}

// The time has to outlast the stalls of a busy machine: of a session's last move, the engine keeps
// only a tenth back.
INSTANTIATE_TEST_SUITE_P(OneCore,
                         SelfPlay,
                         testing::ValuesIn(games(GamesOnOneCore, {startPositionFEN, 0, 2, 1, 1})));
INSTANTIATE_TEST_SUITE_P(TwoCores,
                         SelfPlay,
                         testing::ValuesIn(games(GamesOnTwoCores,
                                                 {startPositionFEN, 0, 4, 2, 101})));
INSTANTIATE_TEST_SUITE_P(Sessions,
                         SelfPlay,
                         testing::Values(Match{"8/8/4k3/8/8/8/8/R3K3 w - - 0 1", 10, 5, 1, 201}));

}  // namespace
}  // namespace vatro::test
