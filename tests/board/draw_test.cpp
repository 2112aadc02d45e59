// tests/board/draw_test.cpp - draws by rule, and the count of repetitions that the search and the
// game read.
#include "board/draw.h"

#include "board/game.h"
#include "support.h"

namespace vatro {
namespace {

struct Verdict {
    bool drawn;
    DrawReason reason;
    bool operator==(const Verdict&) const = default;
};

Verdict verdictOn(Board_0x88& board) {
    Verdict verdict{};
    verdict.drawn = isDraw(board, verdict.reason);
    return verdict;
}

TEST(Draw, ByMaterialAndClock) {
    struct Case {
        const char* fen;
        Verdict verdict;
    };
    constexpr Verdict no = {false, DrawReason::None};
    constexpr Verdict material = {true, DrawReason::InsufficientMaterial};
    constexpr Verdict fifty = {true, DrawReason::FiftyMoves};
    const Case cases[] = {
        {"4k3/8/8/8/8/8/8/4K3 w - - 0 1", material},
        {"4k3/8/8/8/8/8/8/4KB2 w - - 0 1", material},
        {"4k3/8/8/8/8/8/8/4KN2 w - - 0 1", material},
        {"4kb2/8/8/8/8/8/8/4K3 w - - 0 1", material},
        {"4kn2/8/8/8/8/8/8/4K3 b - - 0 1", material},
        {"4kn2/8/8/8/8/8/8/4KN2 w - - 0 1", no},
        {"4kb2/8/8/8/8/8/8/4KB2 w - - 0 1", no},
        {"4k3/8/8/8/8/8/8/3NKN2 w - - 0 1", no},
        {"4kbb1/8/8/8/8/8/8/4K3 w - - 0 1", no},
        {"4k3/8/8/8/8/8/4P3/4K3 w - - 0 1", no},
        {"4k3/8/8/8/8/8/8/4KR2 w - - 0 1", no},
        {"4k3/8/8/8/8/8/8/4KQ2 w - - 0 1", no},
        {"4k3/8/8/8/8/8/4P3/4K3 w - - 99 80", no},
        {"4k3/8/8/8/8/8/4P3/4K3 w - - 100 80", fifty},
        {"4k3/8/8/8/8/8/8/4K3 w - - 100 80", fifty},
        {"R5k1/5ppp/8/8/8/8/8/4K3 b - - 100 80", fifty},  // although it is mate
    };
    for (const Case& c : cases) {
        EXPECT_EQ(verdictOn(*boardOf(c.fen)), c.verdict) << c.fen;
    }
}

/// A game in which moves are given as text and every position is judged, as the game does.
class Repetition : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(game->setup(startPositionFEN)); }
    Verdict play(const char* text) {
        game->play(findMove(game->board, text));
        return verdictOn(game->board);
    }
    std::unique_ptr<Game> game = std::make_unique<Game>();
};

TEST_F(Repetition, SecondOccurrenceHasNoReasonAndTheThirdHas) {
    const Verdict no = {false, DrawReason::None};
    for (const char* move : {"g1f3", "g8f6", "f3g1"}) {
        EXPECT_EQ(play(move), no);
    }
    EXPECT_EQ(play("f6g8"), (Verdict{true, DrawReason::None}));
    EXPECT_EQ(game->board.record().repetitions, 1);
    for (const char* move : {"g1f3", "g8f6", "f3g1"}) {
        EXPECT_EQ(play(move), (Verdict{true, DrawReason::None}));
    }
    EXPECT_EQ(play("f6g8"), (Verdict{true, DrawReason::ThirdOccurrence}));
    EXPECT_EQ(game->board.record().repetitions, 2);
}

TEST_F(Repetition, IsNotSoughtBeforeTheLastPawnMove) {
    for (const char* move :
         {"g1f3", "g8f6", "f3g1", "f6g8", "e2e3", "e7e6", "g1f3", "g8f6", "f3g1"}) {
        play(move);
    }
    EXPECT_EQ(play("f6g8"), (Verdict{true, DrawReason::None})) << "the position after e7e6";
    EXPECT_EQ(game->board.record().repetitions, 1);
}

TEST_F(Repetition, RightsThatAreGoneMakeAnotherPosition) {
    ASSERT_TRUE(game->setup("r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1"));
    for (const char* move : {"h1g1", "a8b8", "g1h1"}) {
        play(move);
    }
    EXPECT_EQ(play("b8a8"), (Verdict{false, DrawReason::None})) << "two rights fewer";
    EXPECT_EQ(play("h1g1"), (Verdict{false, DrawReason::None})) << "as after h1g1, but for a right";
    EXPECT_EQ(play("a8b8"), (Verdict{true, DrawReason::None}));
}

}  // namespace
}  // namespace vatro
