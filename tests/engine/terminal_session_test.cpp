// tests/engine/terminal_session_test.cpp - what a user at a terminal sees and an interface does
// not.
#include <algorithm>

#include <gtest/gtest.h>

#include "engine/session.h"

namespace vatro::test {
namespace {

constexpr char prompt[] = "# Your move: ";

/// All that the engine says up to the next prompt.
std::string toPrompt(Session& session, const std::string& line) {
    session.send(line);
    const std::string text = session.process.readUntil(prompt);
    EXPECT_TRUE(text.ends_with(prompt)) << "after \"" << line << "\" came " << text;
    return text.substr(0, text.size() - std::min(text.size(), sizeof prompt - 1));
}

TEST(Terminal, HelpsWithTheCommands) {
    Session session({}, smallTables, Session::Client::UserAtTerminal);
    session.process.readUntil(prompt);
    const std::string help = toPrompt(session, "help");
    EXPECT_TRUE(help.starts_with("# quit       end the program")) << help;
    EXPECT_NE(std::string::npos, help.find("go         play the side to move")) << help;
    EXPECT_EQ("# unknown command \"Nf3\"; \"help\" lists the commands\n",
              toPrompt(session, "Nf3 please"));
    EXPECT_EQ("", toPrompt(session, ""));
    session.process.closeInput();
    EXPECT_EQ(0, session.process.waitForExit());
}

TEST(Terminal, PromptsWhenTheUserIsToMove) {
    Session session({}, smallTables, Session::Client::UserAtTerminal);
    session.process.readUntil(prompt);
    toPrompt(session, "sd 2");
    for (const char* const line : {"e2e4", "go", "randgame", "go", "norandgame", "usermove a2a3"}) {
        const std::string answer = toPrompt(session, line);
        if (std::string_view(line).ends_with("randgame")) continue;
        EXPECT_NE(std::string::npos, answer.find("\nmove ")) << answer;
        EXPECT_TRUE(answer.ends_with("\n#\n")) << answer;  // the board, up to the prompt
    }
    session.process.send("analyze\n");
    session.nextThought();
    toPrompt(session, "exit");
    EXPECT_EQ(Lines(), session.linesUnasked());  // no second prompt
}

TEST(Terminal, AFinishedGameSaysHowToStartAnother) {
    Session session({}, smallTables, Session::Client::UserAtTerminal);
    session.process.readUntil(prompt);
    toPrompt(session, "force");
    toPrompt(session, "setboard 7k/8/6K1/8/8/8/8/R7 w - - 0 1");
    const std::string end =
        "1-0 {White wins by checkmate}\n"
        "# The game is over. \"new\" starts another, \"undo\" takes back a move.\n";
    EXPECT_TRUE(toPrompt(session, "a1a8").ends_with(end));
    toPrompt(session, "undo");
    EXPECT_TRUE(toPrompt(session, "go").ends_with(end));
    toPrompt(session, "new");
    toPrompt(session, "sd 2");
    EXPECT_NE(std::string::npos, toPrompt(session, "e2e4").find("\nmove "));
}

TEST(Terminal, AnInterfaceAtOneIsNotHelped) {
    Session session({}, smallTables, Session::Client::UserAtTerminal);
    session.process.readUntil(prompt);
    EXPECT_EQ(Lines({""}), session.allAnswersTo("xboard\nhelp\nnonsense"));
}

TEST(Terminal, NothingIsDifferentOnAPipe) {
    Session session({}, smallTables, Session::Client::UserOnPipe);
    session.process.readUntil(prompt);
    session.send("help\nnonsense\nforce\nsetboard k7/8/8/8/8/8/8/K7 w - -");
    EXPECT_EQ(std::string(prompt) + prompt,
              session.process.readUntil(prompt) + session.process.readUntil(prompt));
    EXPECT_EQ(std::string(prompt), session.process.readUntil(prompt));  // force
    session.process.readUntil("1/2-1/2 {Draw by insufficient material}\n");
    EXPECT_TRUE(session.process.readUntil(prompt).starts_with("# k......."));
}

}  // namespace
}  // namespace vatro::test
