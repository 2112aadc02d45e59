// tests/engine/search_session_test.cpp - what happens while the engine thinks.
#include <algorithm>
#include <csignal>
#include <iterator>
#include <random>
#include <thread>

#include <gtest/gtest.h>

#include "board/board.h"
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
    session.nextLine("2 ");
}

TEST(DuringSearch, CommandsThatKeepItAreAnsweredAtOnce) {
    Session session;
    startLongSearch(session);
    const std::pair<const char*, const char*> commands[] = {
        {"ping 3", "pong 3"},
        {"eval", "Phase = "},
        {"cores 2", "# will now use 2 cores"},
        {"protover 2", "feature done=1"},
        {"time 100000", ""},
        {"option ttHashSizeMB=5", ""},
        {"option pawnHashSizeMB=2", ""},
        {"book", ""},
        {"tune 1", ""},
        {"egtpath gaviota x", ""},
    };
    for (const auto& [line, answer] : commands) {
        const Lines answers = session.allAnswersTo(line);
        EXPECT_EQ(0, count(answers, "move ") + count(answers, "# command")) << line;
        EXPECT_TRUE(*answer == '\0' || count(answers, answer) == 1) << line;
    }
    session.nextThought();  // it still thinks
    session.send("new");
    EXPECT_EQ("# new size of TT hash: 4 MB", session.nextLine("# new size"));
    EXPECT_EQ("# new size of Pawn hash: 2 MB", session.nextLine("# new size"));
    EXPECT_EQ(Lines(), session.answersTo(""));
}

TEST(DuringSearch, CommandsThatStopItDiscardItsMove) {
    const std::pair<const char*, const char*> commands[] = {
        {"force", ""},
        {"undo", "# command \"undo\" returned an error code"},
        {"perft 1", "# Total leaves: 20"},
        {"randgames 1", "# Playing 1 random games"},
        {"setboard 8/8/8/8/8/8/8/K1k5 w - -", "1/2-1/2 {Draw by insufficient material}"},
    };
    for (const auto& [line, answer] : commands) {
        SCOPED_TRACE(line);
        Session session;
        startLongSearch(session);
        const Lines answers = session.allAnswersTo(std::string(line) + "\nforce");
        EXPECT_EQ(0, count(answers, "move "));
        EXPECT_TRUE(*answer == '\0' || count(answers, answer) == 1);
        EXPECT_EQ(Lines(), session.linesUnasked());
    }
}

TEST(DuringSearch, QuitEndsTheProgram) {
    Session session;
    startLongSearch(session);
    session.send("quit");
    EXPECT_EQ(0, session.process.waitForExit());
}

TEST(DuringSearch, EndOfInputWaitsForTheMove) {
    Session session;
    session.send("level 0 0:30 0\ngo");
    session.process.closeInput();
    session.nextMove();
    EXPECT_EQ(0, session.exitStatus());
}

TEST(DuringSearch, EndOfInputEndsAnalysis) {
    Session session;
    session.send("analyze");
    session.nextLine("2 ");
    EXPECT_EQ(0, session.exitStatus());
}

TEST(DuringSearch, TheProgramEndsWhenNobodyReadsItsOutput) {
    Session session;
    session.send("analyze");
    session.nextLine("2 ");
    session.process.closeOutput();
    session.process.expectEnd(-SIGPIPE);
    EXPECT_TRUE(session.process.waitForExit());
}

TEST(SearchStops, AreExplained) {
    struct Case {
        const char* clock;
        const char* fen;
        const char* reason;
    };
    const Case cases[] = {
        {"level 1 60 0", "k7/8/8/8/8/8/6q1/7K w - - 0 1", "# forced move: h1g2"},
        {"level 1 60 0", "7k/8/6K1/8/8/8/8/R7 w - - 0 1", "# forced mate in 1 plies: a1a8"},
        {"level 1 60 0", "7k/7p/5K2/8/8/8/8/6R1 b - - 0 1", "# getting mated in "},
        {"level 40 1:40 0", "r3k3/1pp3p1/8/8/8/4P3/7P/4Kq2 w q - 0 1", "# easy move: e1f1"},
        {"time 1", startPositionFEN, "# timeout"},
    };
    for (const auto& [clock, fen, reason] : cases) {
        Session session;
        session.send(std::string("setboard ") + fen + '\n' + clock + "\ngo");
        session.nextLine(reason);
        session.nextMove();
        session.answersTo("");
    }
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
        session.answersTo("");
        if (HasFailure()) return;
    }
    session.answersTo("exit\nforce\nnew");
    session.send("post\nsd 2\nusermove e2e4");
    session.nextMove();
    EXPECT_EQ(0, session.exitStatus());
}
INSTANTIATE_TEST_SUITE_P(Seeds, ThrownCommands, testing::Range(1U, 5U));

}  // namespace
}  // namespace vatro::test
