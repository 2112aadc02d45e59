// tests/uci/uci_session_test.cpp - UCI conversations with the built program.
#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

#include "engine/session.h"

namespace vatro::test {
namespace {

/// A session in which "uci" has been said.
struct Uci : testing::Test {
    Uci() {
        session.send("uci");
        greeting = session.linesBefore("uciok");
    }

    /// What is said up to the answer to "isready".
    Lines answersTo(const std::string& line) {
        session.send(line + "\nisready");
        return session.linesBefore("readyok");
    }
    /// The lines of a search and, last, its "bestmove".
    Lines search(const std::string& line) {
        session.send(line);
        std::string best;
        Lines lines = session.linesBefore("bestmove", &best);
        lines.push_back(best);
        return lines;
    }
    /// The move of "bestmove".
    std::string bestMove(const std::string& line) {
        return wordAfter(search(line).back(), "bestmove");
    }

    static std::string wordAfter(const std::string& line, const std::string& word) {
        std::istringstream words(line);
        std::string found;
        while (words >> found) {
            if (found == word) return words >> found ? found : "";
        }
        return "";
    }

    /// A slow search tells what it is looking at.
    static bool isCurrentMove(const std::string& line) {
        return line.find(" currmove ") != std::string::npos;
    }

    static bool isBestMove(const std::string& line) { return line.starts_with("bestmove "); }

    Session session{{}, smallTables, Session::Client::UserOnPipe};
    Lines greeting;
};

/// "| `Hash` | 1 to 2048 | 256 |" for the line that announces an option; neither a text nor what
/// this machine allows is in the README.
std::string readmeRow(const std::string& announced) {
    const std::size_t nameAt = std::string("option name ").size();
    const std::size_t typeAt = announced.find(" type ");
    const std::string type = Uci::wordAfter(announced, "type");
    const std::string name = announced.substr(nameAt, typeAt - nameAt);
    std::string range = " | | ";
    if (type == "spin") {
        const std::string most = Uci::wordAfter(announced, "max");
        range = " | " + Uci::wordAfter(announced, "min") + " to " +
                (name == "Threads" ? "the machine's" : most) + " | ";
    }
    const bool hasDefault = type == "spin" || type == "check";
    return "| `" + name + '`' + range +
           (hasDefault ? Uci::wordAfter(announced, "default") + " | " : "");
}

TEST_F(Uci, TheReadmeListsItsOptions) {
    Session plain({}, "", Session::Client::UserOnPipe);
    plain.send("uci");
    const Lines announced = plain.linesBefore("uciok");
    std::ifstream readme(VATRO_README);
    std::string row;
    while (std::getline(readme, row) && row != "## UCI") {
    }
    while (std::getline(readme, row) && !row.starts_with("| `")) {
    }
    for (const std::string& line : announced) {
        if (!line.starts_with("option ")) continue;
        EXPECT_TRUE(row.starts_with(readmeRow(line))) << line << '\n' << row;
        std::getline(readme, row);
    }
    EXPECT_EQ(row, "") << "an option that the program does not have";
    EXPECT_NE(std::find(announced.begin(), announced.end(), "id author the Vatro developers"),
              announced.end());
}

// What `vatro.ini` says is the default.
TEST_F(Uci, ItsDefaultsAreTheSettings) {
    for (const char* line : {"option name Hash type spin default 4 min 1 max 2048",
                             "option name PawnHash type spin default 1 min 1 max 2048"}) {
        EXPECT_NE(std::find(greeting.begin(), greeting.end(), line), greeting.end()) << line;
    }
}

TEST_F(Uci, FixedDepthVisitsTheNodesOfTheOtherProtocol) {
    const char* const fen = "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1";
    const Lines lines = search(std::string("position fen ") + fen + "\ngo depth 7");
    Session other;
    other.send(std::string("nobook\nlevel 1 60 0\nsd 7\nsetboard ") + fen + "\ngo");
    const std::string statistics = other.nextLine("# total nodes");
    EXPECT_EQ(wordAfter(lines[lines.size() - 2], "nodes") + ",", wordAfter(statistics, "="));
    EXPECT_EQ(wordAfter(lines.back(), "bestmove"), other.nextMove());
    EXPECT_FALSE(wordAfter(lines.back(), "ponder").empty());
}

TEST_F(Uci, InfoLinesTellWhatIsKnown) {
    for (const std::string& line : search("position startpos moves e2e4\ngo depth 6")) {
        if (!line.starts_with("info depth") || isCurrentMove(line)) continue;
        for (const char* word :
             {"seldepth", "multipv", "score", "nodes", "tbhits", "time", "hashfull", "pv"}) {
            EXPECT_FALSE(wordAfter(line, word).empty()) << word << ": " << line;
        }
        EXPECT_GE(std::stoi(wordAfter(line, "seldepth")), std::stoi(wordAfter(line, "depth")))
            << line;
    }
}

TEST_F(Uci, ShowsAsManyLinesAsAreWantedAndPossible) {
    answersTo("setoption  name  multiPV\tvalue 3");
    const auto ranksAt = [this](const std::string& depth, const std::string& line) {
        std::set<std::string> ranks;
        for (const std::string& info : search(line)) {
            if (isCurrentMove(info)) continue;
            if (wordAfter(info, "depth") == depth) ranks.insert(wordAfter(info, "multipv"));
        }
        return ranks;
    };
    EXPECT_EQ(ranksAt("5", "position startpos\ngo depth 5"),
              (std::set<std::string>{"1", "2", "3"}));
    EXPECT_EQ(ranksAt("1", "position fen 7k/8/8/8/8/8/1q6/K7 w - - 0 1\ngo depth 1"),
              (std::set<std::string>{"1"}));
}

TEST_F(Uci, LimitsAreKept) {
    EXPECT_EQ(bestMove("position startpos\ngo depth 4 searchmoves a2a3"), "a2a3");
    EXPECT_EQ(
        bestMove("position startpos\ngo searchmoves h2h4 a2a3 depth 1").find_first_not_of("ah234"),
        std::string::npos);
    const Lines nodes = search("position startpos\ngo nodes 5000");
    EXPECT_EQ(wordAfter(nodes[nodes.size() - 2], "nodes"), "5000");
    const Lines timed = search("position startpos\ngo movetime 100");
    EXPECT_LT(std::stoi(wordAfter(timed[timed.size() - 2], "time")), 5000);
    // A mate in two: the search ends with it, though no other limit is set.
    const Lines mate = search("position fen 8/2kp1Ppr/3N4/K1p5/4B3/8/2q5/8 w - - 0 1\ngo mate 2");
    EXPECT_EQ(wordAfter(mate.back(), "bestmove"), "d6b5");
}

TEST_F(Uci, AClockThatIsNearlyEmptyIsNotOverdrawn) {
    const Lines lines =
        search("position startpos\ngo wtime 200 btime 200 winc 0 binc 0 movestogo 1");
    EXPECT_LT(std::stoi(wordAfter(lines[lines.size() - 2], "time")), 3000);
    search("position startpos moves e2e4\ngo wtime 100 btime -20");
}

TEST_F(Uci, ASearchWithoutALimitHasAClock) {
    session.send("debug on\nposition startpos\ngo");
    session.nextLine("info string time for the move");
    EXPECT_EQ(bestMove("stop").size(), 4U);
}

TEST_F(Uci, AnEndlessSearchAnswersOnlyToStop) {
    // A mate ends the search by itself, but not the wait.
    session.send("position fen 7k/8/6K1/8/8/8/8/R7 w - - 0 1\ngo infinite");
    session.nextLine("info nodes");
    EXPECT_TRUE(answersTo("").empty());
    EXPECT_EQ(bestMove("stop"), "a1a8");
    session.send("position startpos\ngo infinite");
    session.nextLine("info depth 4");
    for (const std::string& line : answersTo("")) {
        EXPECT_FALSE(line.starts_with("bestmove"));
    }
    EXPECT_EQ(bestMove("stop").size(), 4U);
}

TEST_F(Uci, PonderingGoesOnWithTheTimeThatIsLeft) {
    // A search that has ended by itself waits for the move.
    session.send("position fen 7k/8/6K1/8/8/8/8/R7 w - - 0 1\ngo ponder wtime 1000 btime 1000");
    session.nextLine("info nodes");
    EXPECT_TRUE(answersTo("").empty());
    EXPECT_EQ(bestMove("ponderhit"), "a1a8");
    session.send("position startpos moves e2e4 e7e5\ngo ponder wtime 3000 btime 3000");
    session.nextLine("info depth 4");
    EXPECT_EQ(bestMove("ponderhit").size(), 4U);
    session.send("position startpos moves e2e4 e7e5\ngo ponder wtime 300000 btime 300000");
    session.nextLine("info depth 3");
    EXPECT_EQ(bestMove("stop").size(), 4U);
}

TEST_F(Uci, PositionsWithoutMovesHaveNoBestMove) {
    EXPECT_EQ(search("position fen 7k/6Q1/6K1/8/8/8/8/8 b - - 0 1\ngo depth 5"),
              Lines({"info depth 0 score mate 0", "bestmove 0000"}));
    // Not before it is asked for.
    for (const auto& [line, end] :
         {std::pair("go infinite", "stop"), std::pair("go ponder", "ponderhit")}) {
        EXPECT_EQ(answersTo("position fen 7k/5Q2/6K1/8/8/8/8/8 b - - 0 1\n" + std::string(line)),
                  Lines({"info depth 0 score cp 0"}));
        EXPECT_EQ(search(end), Lines({"bestmove 0000"}));
    }
}

TEST_F(Uci, ErrorsLeaveThePosition) {
    answersTo("position fen 7k/8/6K1/8/8/8/8/R7 w - - 0 1");
    for (const char* line :
         {"position", "position fen", "position fen x", "position startpos moves e2e5",
          "position somewhere", "setoption", "setoption name", "setoption name value 1",
          "setoption named Hash value 2", "setoption name Nothing value 1",
          "setoption name Hash value 0", "setoption name MultiPV value 1000",
          "setoption name OwnBook value perhaps", "setoption name Threads value 100000",
          "something else"}) {
        const Lines answers = answersTo(line);
        ASSERT_EQ(answers.size(), 1U) << line;
        EXPECT_TRUE(answers[0].starts_with("info string ")) << line;
    }
    EXPECT_EQ(bestMove("go depth 3"), "a1a8");
    EXPECT_EQ(bestMove("nonsense before go depth 3"), "a1a8");
}

TEST_F(Uci, LongGamesAreTakenIn) {
    std::string line = "position startpos moves";
    for (int i = 0; i < 60; ++i) {
        line += " g1f3 g8f6 f3g1 f6g8";
    }
    EXPECT_TRUE(answersTo(line).empty());
    EXPECT_EQ(bestMove("go depth 2").size(), 4U);
}

TEST_F(Uci, EachSearchHasOneAnswerWhateverComesMeanwhile) {
    const char* const states[] = {"",
                                  "go infinite",
                                  "go ponder wtime 1000 btime 1000",
                                  "go wtime 100000 btime 100000",
                                  "go depth 1",
                                  "go infinite\nstop",
                                  "go ponder\nponderhit",
                                  "go ponder wtime 100000 btime 100000\nponderhit"};
    const char* const commands[] = {"uci",  // each is followed by "isready"
                                    "debug on",
                                    "setoption name Hash value 2",
                                    "setoption name Threads value 2",
                                    "setoption name clear   hash",
                                    "register later",
                                    "ucinewgame",
                                    "position startpos moves d2d4",
                                    "go depth 1",
                                    "go infinite",
                                    "stop",
                                    "ponderhit"};
    for (const char* state : states) {
        for (const char* command : commands) {
            SCOPED_TRACE(std::string(state) + " | " + command);
            std::ptrdiff_t searches = 0;
            std::ptrdiff_t answers = 0;
            for (const std::string line :
                 {state, command,
                  "stop\nposition startpos moves e2e4\nsetoption name Threads value 1"}) {
                searches += line.starts_with("go ");
                const Lines lines = answersTo(line);
                answers += std::count_if(lines.begin(), lines.end(), isBestMove);
            }
            EXPECT_EQ(answers, searches);
            const std::string move = bestMove("go depth 2");
            EXPECT_TRUE(move.size() == 4 && move[1] >= '7') << move;  // Black's
        }
    }
}

TEST(UciInput, EndsWithTheSearchesThatHaveALimit) {
    Session session({}, smallTables, Session::Client::UserOnPipe);
    session.send("uci\nposition startpos\ngo depth 4");
    EXPECT_EQ(session.exitStatus(), 0);
    Session endless({}, smallTables, Session::Client::UserOnPipe);
    endless.send("uci\ngo infinite");
    EXPECT_EQ(endless.exitStatus(), 0);
}

// Nothing but the first line chooses the protocol.
TEST(UciInput, IsNotAskedForLater) {
    Session session;
    EXPECT_TRUE(session.answersTo("uci").empty());
    session.send("sd 1\nnobook\ngo");
    EXPECT_FALSE(session.nextMove().empty());
}

TEST(Program, AnswersItsArguments) {
    const auto outputOf = [](const Lines& args) {
        ScratchDirectory directory;
        Lines all{engineProgram()};
        all.insert(all.end(), args.begin(), args.end());
        ChildProcess process(all, directory.path.string());
        std::string output = process.readAll().value_or("");
        EXPECT_EQ(process.waitForExit(), 0);
        return output;
    };
    EXPECT_TRUE(outputOf({"--version"}).starts_with("Vatro "));
    EXPECT_NE(outputOf({"--help"}).find("bench"), std::string::npos);
    const std::string bench = outputOf({"bench", "4"});
    EXPECT_NE(bench.find(" nodes "), std::string::npos) << bench;
    EXPECT_TRUE(bench.ends_with(" nps\n")) << bench;
}

}  // namespace
}  // namespace vatro::test
