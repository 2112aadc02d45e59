// tests/engine/clock_session_test.cpp - what the engine makes of the clock in a conversation.
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "engine/session.h"

namespace vatro::test {
namespace {

/// The number that follows a text in a line of the engine.
int numberAfter(const std::string& text, const std::string& line) {
    const std::size_t at = line.find(text);
    EXPECT_NE(at, std::string::npos) << line;
    return at == std::string::npos ? -1 : std::atoi(line.c_str() + at + text.size());
}

int nextRemaining(Session& session) {
    return numberAfter("remaining=", session.nextLine("# total="));
}

/// Centiseconds that may go by on a busy machine while the plan is made and printed.
constexpr int Late = 20;

bool isJustBelow(int before, int now) { return before - Late <= now && now <= before; }

TEST(Clock, NoPlanGoesBeyondIt) {
    Session session;
    session.send("level 0 0:01 1\ngo");  // one second, and one more only after the move
    EXPECT_EQ(session.nextLine("# set maxTime"), "# set maxTime = 92");
    EXPECT_EQ(session.nextLine("# out of book"), "# out of book: corrected maxTime = 138");
    std::string limit = session.nextLine("# clock holds");
    EXPECT_PRED2(isJustBelow, 100, numberAfter("holds ", limit));
    EXPECT_NEAR(numberAfter("maxTime = ", limit), 97, Late);
    EXPECT_NE(session.nextMove(), "");
    // White is told the clock before the move that completes a period is recorded.
    session.send("new\nlevel 1 0:10 0\nforce\nusermove e2e4\ntime 50\nusermove e7e5\ngo");
    EXPECT_PRED2(isJustBelow, 1050, nextRemaining(session));
    limit = session.nextLine("# clock holds");
    EXPECT_PRED2(isJustBelow, 50, numberAfter("holds ", limit));
    EXPECT_NEAR(numberAfter("maxTime = ", limit), 47, Late);
    EXPECT_NE(session.nextMove(), "");
}

TEST(Clock, ToldDuringASearchMayShortenIt) {
    Session session;
    session.send("level 0 100 0\ngo");
    session.nextLine("2 ");
    session.send("time 60");
    EXPECT_PRED2(isJustBelow, 60, numberAfter("holds ", session.nextLine("# clock holds")));
    EXPECT_NE(session.nextMove(), "");
    session.send("time 500000\nusermove a7a6");
    EXPECT_PRED2(isJustBelow, 500000, nextRemaining(session));  // nothing counted twice
    session.send("force");
    session.allAnswersTo("");
}

TEST(Clock, SecondsForAMoveHoldUntilALevel) {
    Session session;
    session.send("st 1\nlevel 40 5 0\nst 1\ntime 30000\ngo");
    EXPECT_EQ(session.nextLine("# set maxTime"), "# set maxTime = 100");
    const std::string limit = session.nextLine("# clock holds");
    EXPECT_PRED2(isJustBelow, 100, numberAfter("holds ", limit));
    EXPECT_NEAR(numberAfter("maxTime = ", limit), 97, Late);
    EXPECT_NE(session.nextMove(), "");
    session.send("level 40 5 0\nusermove a7a6");
    EXPECT_EQ(session.nextLine("# set maxTime").substr(0, 18), "# set maxTime = 69");
    session.send("force");
    session.allAnswersTo("");
}

TEST(Clock, AQuestionMarkEndsASearchWithItsMove) {
    Session session;
    session.send("level 1 60 0\ngo");
    session.nextLine("4 ");
    session.send("?");
    EXPECT_NE(session.nextMove(), "");
    session.send("?\nforce\nanalyze");  // nothing to end, and no move to play
    session.nextLine("4 ");
    for (const std::string& line : session.answersTo("?")) {
        EXPECT_FALSE(line.starts_with("move ")) << line;
    }
}

}  // namespace
}  // namespace vatro::test
