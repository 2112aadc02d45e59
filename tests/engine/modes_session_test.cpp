// tests/engine/modes_session_test.cpp - how analysis, auto play and a finished game are left.
#include <gtest/gtest.h>

#include "engine/session.h"

namespace vatro::test {
namespace {

TEST(Modes, WhateverEndsAnalysisLeavesATimedGame) {
    for (const char* const end :
         {"go", "playother\nusermove e2e4", "auto", "exit\ngo", "randpos\ngo"}) {
        SCOPED_TRACE(end);
        Session session;
        session.send("analyze");
        session.nextThought();
        session.send("level 0 0:02 0\n" + std::string(end));
        session.nextLine("# set maxTime");
        EXPECT_NE(session.nextMove(), "");
        session.answersTo("force");
    }
}

TEST(Modes, AFinishedAnalysisIsNotRepeated) {
    Session session;
    session.send("setboard 7k/8/6K1/8/8/8/8/R7 w - - 0 1\nanalyze");
    session.nextLine("# tbHits");  // a mate in one: nothing is left to find
    session.send("post\n\nnopost\npost");
    EXPECT_EQ(Lines(), session.linesUnasked());
    session.send("setboard 7k/8/6K1/8/8/8/8/R7 w - - 0 1");  // but another position is searched
    session.nextLine("# tbHits");
    // A forced move is no reason to stop looking.
    session.send("setboard 7k/8/8/8/8/r7/1r6/K7 w - - 0 1");
    session.nextLine("2 ");
    // Analysis that "force" has interrupted goes on.
    session.send("force");
    session.answersTo("");
    EXPECT_EQ(Lines(), session.linesUnasked());
    session.send("analyze");
    session.nextThought();
    session.answersTo("exit");
}

TEST(Modes, AutoPlayEndsWithTheGameAPositionOrAnalysis) {
    Session session;
    session.send("setboard 7k/8/6K1/8/8/8/8/R7 w - - 0 1\nauto");
    session.nextLine("1-0 {White wins by checkmate}");
    session.answersTo("undo");  // the game is open again, but nobody plays on
    EXPECT_EQ(Lines(), session.linesUnasked());
    for (const char* const end :
         {"setboard 7k/8/8/8/8/8/5R2/K5R1 w - - 0 1\ngo", "analyze\nexit\ngo"}) {
        SCOPED_TRACE(end);
        session.send("new\nsd 3\nauto");
        session.nextMove();
        session.answersTo("force\nsd 3\nauto\n" + std::string(end));
        session.nextMove();
        session.answersTo("");
        EXPECT_EQ(Lines(), session.linesUnasked());  // one move: the engine plays one side
        session.answersTo("force");
    }
}

TEST(Modes, RandomGamesLeaveAGameThatCanBePlayed) {
    Session session;
    session.answersTo("force\nusermove f2f3\nusermove e7e5\nusermove g2g4\nusermove d8h4");
    session.answersTo("randgames 1");
    EXPECT_EQ(Lines(), session.answersTo("usermove e2e4"));
    for (const char* const mode : {"analyze", "auto"}) {  // they go on, whoever was to move
        SCOPED_TRACE(mode);
        session.send(std::string("new\nforce\nusermove e2e4\nlevel 1 60 0\n") + mode);
        session.nextLine("2 ");
        session.send("randgames 1");
        session.nextLine("Total games: ");
        session.nextLine("2 ");
        session.answersTo("exit\nforce");
    }
}

TEST(Modes, OnlyTheSearchThatFoundTheMoveExpectsAReply) {
    Session session;
    session.send("sd 4\ngo");
    session.nextLine("# ponder move: ");
    session.answersTo("force\nundo\nrandgame");  // what was expected stays legal
    session.send("go");
    session.nextMove();
    for (const std::string& line : session.allAnswersTo("force")) {
        EXPECT_FALSE(line.starts_with("# ponder move")) << line;
    }
}

TEST(Words, AMoveNeedsNoCommand) {
    Session session;
    session.send("force\nE2E4\ne7e5\ne1e3");
    EXPECT_EQ("# making user move: E2E4", session.nextLine("# making"));
    EXPECT_EQ("# making user move: e7e5", session.nextLine("# making"));
    EXPECT_EQ("Error (illegal move): e1e3", session.nextLine("Error"));
    session.send("setboard 8/P6k/8/8/8/8/8/K7 w - - 0 1\na7a8n");
    EXPECT_EQ("# making user move: a7a8n", session.nextLine("# making"));
}

TEST(Words, AnEmptyPathMeansNoBookAndNoTables) {
    Session session;
    EXPECT_EQ(Lines({"# setting option: bookFilePath="}),
              session.allAnswersTo("option bookFilePath="));
    EXPECT_EQ(Lines({"# setting option: gtbPath="}), session.allAnswersTo("option gtbPath="));
    session.send("level 0 0:01 0\ngo");
    EXPECT_NE(session.nextMove(), "");
}

}  // namespace
}  // namespace vatro::test
