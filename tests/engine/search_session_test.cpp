// tests/engine/search_session_test.cpp - what happens while the engine thinks.
#include <algorithm>
#include <cctype>
#include <iterator>
#include <random>
#include <thread>

#include <gtest/gtest.h>

#include "engine/session.h"

namespace vatro::test {
namespace {

auto count(const Lines& lines, const char* beginning) {
    return std::count_if(lines.begin(), lines.end(), [beginning](const std::string& line) {
        return line.starts_with(beginning);
    });
}

/// A search that lasts for minutes.
void startLongSearch(Session& session) {
    session.send("level 1 60 0\ngo");
    ASSERT_FALSE(session.nextLine("2 ").empty());
}

TEST(DuringSearch, CommandsThatKeepItAreAnsweredAtOnce) {
    Session session;
    startLongSearch(session);
    for (const std::string line :
         {"ping 3", "time 100000", "eval", "option ttHashSizeMB=5", "option pawnHashSizeMB=2",
          "cores 2", "book", "protover 2", "tune 1", "egtpath gaviota x"}) {
        const Lines answers = session.answersTo(line);
        EXPECT_EQ(0, count(answers, "move ") + count(answers, "# command")) << line;
    }
    std::string thought;  // it still thinks
    while (thought.empty() || thought.front() == '#') {
        thought = session.nextLine("");
        ASSERT_FALSE(thought.empty());
    }
    EXPECT_TRUE(std::isdigit(thought.front())) << thought;
    session.send("new");
    EXPECT_EQ("# new size of TT hash: 4 MB", session.nextLine("# new size"));
    EXPECT_EQ("# new size of Pawn hash: 2 MB", session.nextLine("# new size"));
    EXPECT_EQ(Lines(), session.answersTo(""));
}

TEST(DuringSearch, CommandsThatStopItDiscardItsMove) {
    for (const std::string line :
         {"force", "undo", "perft 1", "randgames 1", "setboard 8/8/8/8/8/8/8/K1k5 w - -"}) {
        SCOPED_TRACE(line);
        Session session;
        startLongSearch(session);
        session.send(line + "\nforce");
        EXPECT_EQ(0, count(session.answersTo(""), "move "));
    }
}

TEST(DuringSearch, QuitEndsTheProgram) {
    Session session;
    startLongSearch(session);
    session.send("quit");
    EXPECT_EQ(0, session.process.waitForExit(Session::Patience));
}

TEST(DuringSearch, EndOfInputWaitsForTheMove) {
    Session session;
    session.send("level 0 0:30 0\ngo");
    session.process.closeInput();
    EXPECT_FALSE(session.nextMove().empty());
    EXPECT_EQ(0, session.exitStatus());
}

TEST(DuringSearch, EndOfInputEndsAnalysis) {
    Session session;
    session.send("analyze");
    ASSERT_FALSE(session.nextLine("2 ").empty());
    EXPECT_EQ(0, session.exitStatus());
}

TEST(DuringSearch, TheProgramEndsWhenNobodyReadsItsOutput) {
    Session session;
    session.send("analyze");
    ASSERT_FALSE(session.nextLine("2 ").empty());
    session.process.closeOutput();
    const auto status = session.process.waitForExit(Session::Patience);
    ASSERT_TRUE(status);
    EXPECT_NE(0, *status);
}

/// Commands in any order at any moment. What they leave is checked by a game after them.
class ThrownCommands : public testing::TestWithParam<unsigned> {};

TEST_P(ThrownCommands, LeaveAWorkingEngine) {
    const char* const lines[] = {
        "new",
        "force",
        "go",
        "go",
        "go",
        "playother",
        "auto",
        "auto",
        "analyze",
        "exit",
        "post",
        "nopost",
        "undo",
        "remove",
        "usermove e2e4",
        "usermove e7e5",
        "usermove g1f3",
        "usermove b8c6",
        "usermove a7a8q",
        "setboard 8/P6k/8/8/8/8/7K/8 w - -",
        "setboard r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
        "setboard k7/8/8/8/8/8/8/8 w - -",
        "setboard 8/8/8/8/8/8/8/8 b - - 255 1",
        "setboard 4k3/8/8/8/8/8/4R3/4K3 w - - 0 1",
        "setboard x y z 0",
        "level 0 0:01 0",
        "level 40 0:02 1",
        "level 1 0:01 0",
        "time 50",
        "time 100000",
        "time -100",
        "sd 3",
        "sd 0",
        "cores 1",
        "cores 2",
        "cores 3",
        "option ttHashSizeMB=1",
        "option ttHashSizeMB=2",
        "option pawnHashSizeMB=1",
        "option pawnHashSizeMB=2",
        "option gtbCacheSizeMB=0",
        "option gtbPath=x",
        "option bookFilePath=book.bin",
        "egtpath gaviota .",
        "book",
        "nobook",
        "perft 2",
        "divide 1",
        "eval",
        "tune 1",
        "randgame",
        "norandgame",
        "randgames 2",
        "randpos 3",
        "test",
        "protover 2",
        "ping 1",
        "xboard",
        "nonsense",
        "",
    };
    std::mt19937 random(GetParam());
    Session session({"-cores", "2"});
    for (int i = 0; i < 300; ++i) {
        session.send(lines[random() % std::size(lines)]);
        if (random() % 4 == 0) {
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 20000));
        }
        if (i % 20 != 19) continue;
        ASSERT_EQ(0, count(session.answersTo(""), "(no answer)"));
    }
    session.answersTo("exit\nforce\nnew");
    session.send("post\nsd 2\nusermove e2e4");
    EXPECT_FALSE(session.nextMove().empty());
    EXPECT_EQ(0, session.exitStatus());
}
INSTANTIATE_TEST_SUITE_P(Seeds, ThrownCommands, testing::Range(1U, 5U));

}  // namespace
}  // namespace vatro::test
