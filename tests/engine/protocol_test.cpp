// tests/engine/protocol_test.cpp - commands and their answers, and the game that they leave.
#include <algorithm>
#include <fstream>

#include <gtest/gtest.h>

#include "engine/session.h"

namespace vatro::test {
namespace {

std::string failed(const std::string& line) {
    return "# command \"" + line + "\" returned an error code ";
}

TEST(CommandLoop, ReportsFaultsAndIgnoresUnknownWords) {
    struct Case {
        std::string line;
        std::string error;  // before the line that reports the command as failed
    };
    const Case failing[] = {
        {"usermove", "Error (missing arguments, expected at least 1): usermove"},
        {"tune", "Error (missing arguments, expected at least 1): tune"},
        {"setboard 8/8 w", "Error (missing arguments, expected at least 4): setboard 8/8 w"},
        {"ping 1 2", "Error (too many arguments, expected at most 1): ping 1 2"},
        {"usermove  e2e4", "Error (too many arguments, expected at most 1): usermove  e2e4"},
        {"quit now", "Error (too many arguments, expected at most 0): quit now"},
        {"usermove e2e", "Error (illegal argument to 'usermove' command): e2e"},
        {"usermove e2e4qq", "Error (illegal argument to 'usermove' command): e2e4qq"},
        {"usermove e2e5", "Error (illegal move): e2e5"},
        {"usermove i2i4", "Error (illegal move): i2i4"},
        {"usermove e2e4q", "Error (illegal move): e2e4q"},
        {"option ttHashSizeMB=0", "Error (illegal value for 'ttHashSizeMB' option): 0"},
        {"option gtbCacheSizeMB=257", "Error (illegal value for 'gtbCacheSizeMB' option): 257"},
        {"option gtbCacheSizeMB=-1", "Error (illegal value for 'gtbCacheSizeMB' option): -1"},
        {"option gtbCacheSizeMB", "Error (missing value for 'gtbCacheSizeMB' option)"},
        {"option pawnHashSizeMB=4294967297",
         "Error (illegal value for 'pawnHashSizeMB' option): 4294967297"},
        {"option bookFilePath=" + std::string(256, 'x'),
         "Error (path too long for 'bookFilePath' option): " + std::string(256, 'x')},
        {"option tthashsizemb=8", "Error (unknown option name): tthashsizemb"},
        {"option =", "Error (unknown option name): "},
        {"egtpath nalimov x", "# invalid TB type: nalimov"},
        {"perft 64", "# ERROR: depth above 63"},
        {"undo", ""},
        {"remove", ""},
        {"exit", ""},
        {"auto 1", ""},
        {"sd -1", ""},
        {"cores 0", ""},
        {"perft x", ""},
        {"divide -3", ""},
        {"randgames 0", ""},
        {"randpos -2", ""},
        {"level 40 1:2:3 0", ""},
        {"level 40  0", ""},
        {"setboard 8/8/8/8/8/8/8/9 w - -", "tellusererror Illegal position"},
        {"test missing.txt", "# ERROR: failed to open file \"missing.txt\" for reading"},
    };
    Session session;
    for (const auto& [line, error] : failing) {
        Lines expected{failed(line)};
        if (!error.empty()) expected.insert(expected.begin(), error);
        EXPECT_EQ(expected, session.allAnswersTo(line));
    }
    for (const std::string line :
         {"", "QUIT", "Ping 3", " go", "otim 100", "hard", "tune 1 2", "e2e4 x", "e2e", "i2i4"}) {
        EXPECT_EQ(Lines(), session.allAnswersTo(line)) << line;
    }
    session.send("quit");
    EXPECT_EQ(0, session.process.waitForExit());
}

TEST(CommandLoop, TakesAnyBytesForALine) {
    Session session;
    const std::string longest = "usermove " + std::string(1014, 'x');
    ASSERT_EQ(1023U, longest.size());
    EXPECT_EQ(Lines({"Error (illegal argument to 'usermove' command): " + longest.substr(9),
                     failed(longest)}),
              session.answersTo(longest));
    EXPECT_EQ(Lines({"Error (line too long): " + longest.substr(0, 60) + "..."}),
              session.answersTo(longest + "x"));
    EXPECT_EQ(Lines({"Error (line too long): " + std::string(60, 'z') + "..."}),
              session.answersTo(std::string(3'000'000, 'z') + " quit"));
    EXPECT_EQ(Lines({"pong 3"}), session.answersTo("ping 3   \r"));
    EXPECT_EQ(Lines({"pong 4"}), session.answersTo(std::string("ping 4\0quit", 11)));
    std::string bytes;
    for (int i = 0; i < 20000; ++i) {
        bytes += static_cast<char>((i * 7919) >> 2);
    }
    session.send(bytes);
    EXPECT_EQ(Lines({"pong 2147483647", "pong -2147483648", "pong 0", "pong 12"}),
              session.answersTo("ping 99999999999\nping -99999999999\nping x\nping 12x"));
    EXPECT_EQ(0, session.exitStatus());
}

TEST(CommandLoop, ObeysALastLineWithoutLineFeed) {
    Session session;
    session.process.send("ping 77");
    session.process.closeInput();
    const auto output = session.process.readAll();
    ASSERT_TRUE(output);
    EXPECT_TRUE(output->ends_with("pong 77\n")) << *output;
}

TEST(CommandLoop, PromptsAUserBeforeEachLine) {
    Session session({}, smallTables, Session::Client::UserOnPipe);
    session.process.readUntil("# Your move: ");
    session.send("ping 1");
    EXPECT_EQ("pong 1\n# Your move: ", session.process.readUntil("move: "));
    session.send("");
    EXPECT_EQ("# Your move: ", session.process.readUntil("move: "));
    session.send("xboard\nping 2");
    EXPECT_EQ("\npong 2\n", session.process.readUntil("pong 2\n"));
}

TEST(Game, UserMovesFollowTheRules) {
    Session session;
    session.answersTo("force");
    EXPECT_EQ(Lines({"# making user move: E2e4"}), session.allAnswersTo("usermove E2e4"));
    for (const std::string move :
         {"a7a6", "e4e5", "d7d5", "e5d6", "a6a5", "g1f3", "a5a4", "f1e2", "a4a3", "e1g1"}) {
        EXPECT_EQ(Lines(), session.answersTo("usermove " + move)) << move;
    }
    EXPECT_EQ("rnbqkbnr\n.pp.pppp\n...P....\n........\n........\np....N..\nPPPPBPPP\nRNBQ.RK.\n",
              session.boardAfter("undo\nusermove e1g1"));
}

TEST(Game, PromotionsNeedTheirLetter) {
    Session session;
    session.answersTo("setboard 8/P6k/8/8/8/8/7K/8 w - -");
    EXPECT_EQ(Lines({"Error (illegal move): a7a8", failed("usermove a7a8")}),
              session.answersTo("usermove a7a8"));
    EXPECT_EQ(Lines({"Error (illegal move): a7a8k", failed("usermove a7a8k")}),
              session.answersTo("usermove a7a8k"));
    EXPECT_TRUE(session.boardAfter("usermove a7a8N").starts_with("N......."));
    EXPECT_TRUE(session.boardAfter("undo\nusermove a7a8r").starts_with("R......."));
}

TEST(Game, ResultsEndIt) {
    const std::pair<const char*, const char*> cases[] = {
        {"setboard 7k/8/6K1/8/8/8/8/R7 w - -\nusermove a1a8", "1-0 {White wins by checkmate}"},
        {"setboard r7/8/8/8/8/6k1/8/7K b - -\nusermove a8a1", "0-1 {Black wins by checkmate}"},
        {"setboard 7k/8/6K1/8/8/8/8/5Q2 w - -\nusermove f1f7", "1/2-1/2 {Stalemate}"},
        {"setboard 7k/6p1/6K1/8/8/8/8/8 w - -\nusermove g6g7", ""},
        {"setboard 7k/6p1/5K2/8/8/8/8/8 w - -\nusermove f6g6\nusermove h8g8\nusermove g6h5\n"
         "usermove g7g6\nusermove h5g6",
         "1/2-1/2 {Draw by insufficient material}"},
    };
    for (const auto& [lines, result] : cases) {
        SCOPED_TRACE(lines);
        Session session;
        session.answersTo("force");
        const Lines answers = session.answersTo(lines);
        if (*result == '\0') {
            EXPECT_EQ(2U, answers.size());  // the move was illegal
            continue;
        }
        ASSERT_FALSE(answers.empty());
        EXPECT_EQ(result, answers.back());
        const std::string atEnd = "Error (cannot make a move at end of game)";
        EXPECT_EQ(Lines({atEnd, failed("go")}), session.answersTo("go"));
        EXPECT_EQ(Lines({atEnd, failed("usermove a1a2")}), session.answersTo("usermove a1a2"));
        // A move taken back opens the game again.
        EXPECT_EQ(Lines(), session.answersTo("undo"));
    }
}

TEST(Game, SetBoardForgetsWhatWasPlayedAndRefusesBadPositions) {
    Session session;
    session.answersTo("force\nusermove e2e4\nusermove e7e5");
    const std::string before = session.boardAfter("undo\nusermove e7e5");
    EXPECT_EQ(before, session.boardAfter("setboard 7k/8/8/8/8/8/8/KQ w - -"));
    EXPECT_EQ(Lines(), session.answersTo("remove"));
    EXPECT_EQ("......k.\n........\n........\n........\n........\n........\n........\nK.......\n",
              session.boardAfter("setboard 6k1/8/8/8/8/8/8/K7 b - - 0 1"));
    EXPECT_EQ(Lines({failed("undo")}), session.answersTo("undo"));
}

TEST(Game, TakesBackOneMoveOrTwo) {
    Session session;
    session.answersTo("force");
    const std::string start = session.boardAfter("usermove a2a3\nundo");
    session.answersTo("usermove e2e4");
    EXPECT_EQ(Lines({failed("remove")}), session.answersTo("remove"));
    session.answersTo("usermove d7d5\nusermove e4d5");
    EXPECT_TRUE(session.boardAfter("remove").ends_with("....P...\n........\nPPPP.PPP\nRNBQKBNR\n"));
    EXPECT_EQ(start, session.boardAfter("undo"));
}

TEST(Game, ThatFillsItsRecordIsRefusedFurtherMoves) {
    Session session;
    session.answersTo("force");
    std::string moves;
    const char* const circle[] = {"g1f3", "g8f6", "f3g1", "f6g8"};
    for (int i = 0; i < 1023; ++i) {
        moves += std::string("usermove ") + circle[i % 4] + '\n';
    }
    EXPECT_EQ(Lines(), session.answersTo(moves));
    EXPECT_EQ(Lines({"Error (game too long): f6g8", failed("usermove f6g8")}),
              session.answersTo("usermove f6g8"));
    EXPECT_EQ(Lines({"Error (game too long): no further move can be recorded"}),
              session.answersTo("go"));
    EXPECT_EQ(Lines({"Error (game too long): no further move can be recorded"}),
              session.answersTo("analyze\nexit"));
    EXPECT_EQ(Lines(), session.answersTo("force\nremove\nusermove e7e5\nusermove e2e4"));
}

TEST(Engine, PlaysTheSideThatItIsGiven) {
    Session session;
    session.answersTo("sd 2");
    session.answersTo("playother");  // White is to move: Black for the engine
    session.send("usermove e2e4");
    EXPECT_EQ("# making user move: e2e4", session.nextLine("# making"));
    session.nextMove();
    session.send("go");
    session.nextMove();
    EXPECT_EQ(Lines(), session.answersTo(""));
    EXPECT_EQ(Lines({"# making user move: a7a6"}), session.allAnswersTo("force\nusermove a7a6"));
    EXPECT_EQ(Lines(), session.linesUnasked());
    session.send("new\nsd 2\nusermove d2d4");
    session.nextMove();
    EXPECT_EQ(Lines(), session.answersTo("force\nundo\nundo"));
    session.send("sd 1\ngo");
    session.nextMove();
}

TEST(Engine, ClaimsItsMateAndOffersItsDraw) {
    Session session;
    session.send("setboard 6k1/5ppp/8/8/8/8/8/R3K3 w - -\ngo");
    EXPECT_EQ("a1a8", session.nextMove());
    EXPECT_EQ("1-0 {White wins by checkmate}", session.nextLine("1-0"));
    session.answersTo("setboard 7k/8/8/8/8/8/R7/K7 w - - 99 60\nsd 1");
    session.send("go");
    EXPECT_EQ("offer draw", session.nextLine("offer"));
    session.nextMove();
    EXPECT_EQ(Lines(), session.answersTo(""));
}

TEST(Engine, ReadsLevelAndTime) {
    Session session;
    const auto plan = [&session](const std::string& commands) {
        session.send("new\nforce\nsd 1\n" + commands + "\ngo");
        std::string sum;
        for (const char* const beginning : {"# movesPerSession", "# ply", "# total"}) {
            sum += session.nextLine(beginning) + '\n';
        }
        session.nextMove();
        return sum;
    };
    const std::string afterTime = plan("time 12000");
    EXPECT_TRUE(afterTime.ends_with(
        "# total=30000 elapsed=18000 remaining=12000 available=12000 max=270\n"))
        << afterTime;
    const std::string suddenDeath = plan("level 0 2:30 1\ntime 15100");
    EXPECT_EQ(
        "# movesPerSession=0 timePerSession=15000 increment=100\n"
        "# ply=0 fullMoveNumber=1 remainingMoves=32 nSessions=1\n"
        "# total=15100 elapsed=0 remaining=15100 available=18200 max=511\n",
        suddenDeath);
    // Without any time, the first iteration finds a move.
    for (const std::string absurd :
         {"level -1 -1 -1", "level 99999999999 99999999999 99999999999", "level x : y",
          "level 0 0 0", "time -5", "sd 99999999999\ntime 1"}) {
        EXPECT_TRUE(plan(absurd).ends_with(" max=0\n")) << absurd;
    }
    EXPECT_TRUE(plan("time 99999999999")  // read as 2^31 - 1
                    .ends_with(" remaining=2147483647 available=2147483647 max=48318382\n"));
}

TEST(Engine, WhatIsNotPlayCostsNoTime) {
    Session session;
    session.send("new\nforce\nnobook\nsd 1\nlevel 0 1 0\ntime 4000");
    session.send("perft 4\ndivide 2\nanalyze");
    session.nextLine("6 ");
    session.send("exit\nsd 1\ngo");
    EXPECT_EQ(session.nextLine("# total="),
              "# total=6000 elapsed=2000 remaining=4000 available=4000 max=112");
    session.nextMove();
    // A position that is set starts with nothing used; a refused one changes nothing.
    session.send("force\ntime 3000\nsetboard nonsense\ngo");
    EXPECT_TRUE(session.nextLine("# total=").starts_with("# total=6000 elapsed=3000 "));
    session.nextMove();
    session.send("setboard 7k/8/8/8/8/8/5R2/K5R1 w - - 0 1\ngo");
    EXPECT_TRUE(session.nextLine("# total=").starts_with("# total=6000 elapsed=0 "));
    session.nextMove();
}

TEST(Engine, AnalysesWithoutMovingUntilExit) {
    Session session;
    const std::pair<const char*, const char*> commands[] = {
        {"analyze", ""},
        {"usermove e2e4", "# ....P..."},
        {"undo", "# PPPPPPPP"},
        {"new", "# new size"},
        {"setboard 8/8/8/8/4k3/8/8/R3K3 w Q -", "# R...K..."},
    };
    for (const auto& [line, sign] : commands) {
        session.send(line);
        for (const std::string& text : session.linesBefore(sign)) {  // of the search before it
            EXPECT_FALSE(text.starts_with("move "));
        }
        session.nextThought();
    }
    for (const std::string& text : session.answersTo("exit")) {
        EXPECT_FALSE(text.starts_with("move "));
    }
    EXPECT_EQ(Lines(), session.linesUnasked());
    EXPECT_EQ(Lines({failed("exit")}), session.allAnswersTo("exit"));
}

TEST(Engine, AutoPlayGoesOnToTheEndOfTheGame) {
    Session session;
    session.answersTo("nopost\nsetboard 7k/8/8/8/8/8/5R2/K5R1 w - -\nlevel 0 0:05 0");
    session.send("auto");
    const Lines game = session.linesBefore("1-0");
    EXPECT_LT(0, std::count_if(game.begin(), game.end(),
                               [](const std::string& line) { return line.starts_with("move "); }));
    EXPECT_EQ(Lines(), session.answersTo(""));
    // Commands are served between the moves.
    session.send("new\npost\nlevel 0 0:05 0\nauto");
    session.nextMove();
    session.nextMove();
    session.answersTo("force");  // perhaps one more move
    EXPECT_EQ(Lines(), session.linesUnasked());
}

TEST(Engine, PlaysAtRandomUntilANewGame) {
    Session session;
    session.answersTo("randgame");
    for (int i = 0; i < 10; ++i) {
        session.send("go");
        session.nextMove();
    }
    session.answersTo("new\nsd 1");
    session.send("go");
    session.nextLine("1 ");  // thinks again
}

TEST(Tools, PrintTheirFigures) {
    Session session;
    const Lines first = session.allAnswersTo("perft 3");
    ASSERT_EQ(6U, first.size());
    EXPECT_EQ("# new size of Perft hash: 64 MB", first[0]);
    EXPECT_EQ("# Total leaves: 8902", first[1]);
    EXPECT_EQ("# Total nodes:  421", first[2]);
    EXPECT_EQ(5U, session.allAnswersTo("perft 3").size());
    session.answersTo("setboard 4k3/8/8/8/8/8/4r3/R3K2R w KQ -");
    const Lines divided = session.allAnswersTo("divide 1");
    EXPECT_EQ(3U + 5U, divided.size());
    EXPECT_EQ(1, std::count(divided.begin(), divided.end(), "e1e2 1"));
    EXPECT_EQ(1, std::count(divided.begin(), divided.end(), "Total nodes:  1"));
    const Lines statistics = session.allAnswersTo("randgames 50");
    EXPECT_EQ("# Playing 50 random games ...", statistics.at(0));
    EXPECT_EQ(std::string(50, '#'), statistics.at(1));
    const Lines written = session.allAnswersTo("randpos 10 positions.txt");
    EXPECT_EQ("Wrote 10 random FENs to file \"positions.txt\"", written.at(0));
    std::ifstream file(session.directory.file("positions.txt"));
    std::string fen;
    int fens = 0;
    for (; std::getline(file, fen); ++fens) {
        // Nothing is said of a position but the result, should it be mate or stalemate.
        for (const std::string& answer : session.answersTo("force\nsetboard " + fen)) {
            EXPECT_NE(std::string::npos, answer.find('{')) << fen << '\n' << answer;
        }
    }
    EXPECT_EQ(10, fens);
    session.directory.writeFile("two.txt", "8/8/8/8/8/8/8/8 w - -  \r\nnot a position");
    EXPECT_EQ(Lines({"Running test no. 1 for FEN:", "8/8/8/8/8/8/8/8 w - -", "", "",
                     "Running test no. 2 for FEN:", "not a position", "",
                     "# ERROR: illegal FEN: \"not a position\"", ""}),
              [&] {
                  Lines lines = session.allAnswersTo("test two.txt");
                  std::erase_if(lines, [](const std::string& line) {
                      return line.starts_with("# new size");
                  });
                  return lines;
              }());
}

}  // namespace
}  // namespace vatro::test
