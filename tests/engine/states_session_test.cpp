// tests/engine/states_session_test.cpp - no command in any state spoils the game that follows.
#include <map>
#include <ostream>

#include <gtest/gtest.h>

#include "engine/command_table.h"
#include "engine/session.h"
#include "support.h"

namespace vatro::test {
namespace {

using Client = Session::Client;

struct State {
    const char* name;
    Client client;
    const char* lines;  // that lead there
    const char* sign;   // the beginning of the line that shows it, or ""
};

// NOLINTNEXTLINE(readability-identifier-naming): the name is GoogleTest's
void PrintTo(const State& state, std::ostream* stream) { *stream << state.name; }

const State states[] = {
    {"Fresh", Client::UserOnPipe, "", ""},
    {"Terminal", Client::UserAtTerminal, "", ""},
    {"Xboard", Client::Interface, "", ""},
    {"Force", Client::Interface, "force", ""},
    {"PlayOther", Client::Interface, "playother", ""},
    {"Analysis", Client::Interface, "analyze", "2 "},
    {"FinishedAnalysis", Client::Interface, "setboard 7k/8/6K1/8/8/8/8/R7 w - - 0 1\nanalyze",
     "# tbHits"},
    {"Searching", Client::Interface, "level 1 60 0\ngo", "2 "},
    {"Answered", Client::Interface, "sd 1\ne2e4", "move "},
    {"GameOver", Client::Interface, "force\nf2f3\ne7e5\ng2g4\nd8h4", "0-1 "},
    {"Auto", Client::Interface, "level 40 0:02 0\nauto", "move "},
    {"RandomMoves", Client::Interface, "randgame\ngo", "move "},
    {"SetPosition", Client::Interface, "setboard 8/P6k/8/8/8/8/8/K7 w - - 0 1", ""},
    {"RefusedPosition", Client::Interface, "setboard 8/8/8/8 w - - 0 1", "tellusererror"},
};

/// What follows the word. Without an entry: nothing.
const std::map<std::string_view, const char*> arguments = {
    {"protover", "2"},
    {"ping", "7"},
    {"usermove", "a2a3"},
    {"level", "40 0:10 0"},
    {"sd", "2"},
    {"time", "1000"},
    {"cores", "2"},
    {"egtpath", "gaviota ."},
    {"option", "ttHashSizeMB=2"},
    {"perft", "2"},
    {"divide", "1"},
    {"tune", "1"},
    {"randpos", "2"},
    {"randgames", "1"},
    {"setboard", "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1"},
};

class EveryCommand : public testing::TestWithParam<State> {};

TEST_P(EveryCommand, LeavesAGameThatCanBePlayed) {
    const State& state = GetParam();
    const std::vector<std::string> answers =
        legalMoves("rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq - 0 1");
    for (const CommandEntry& entry : WBEngine::commands()) {
        if (entry.name == "selftest") continue;  // half a minute; ends as "test" does
        std::string line(entry.name);
        const auto found = arguments.find(entry.name);
        if (found != arguments.end()) line += ' ' + std::string(found->second);
        SCOPED_TRACE(line);
        Session session({}, smallTables, state.client);
        session.send(state.lines);
        if (*state.sign) session.nextLine(state.sign);
        session.send(line);
        if (entry.name == "quit") {
            EXPECT_EQ(0, session.process.waitForExit());
            continue;
        }
        // All modes are left one by one, not by "new", which would hide what a mode has left.
        session.send("xboard\nexit\nforce\nnorandgame\nnobook\nlevel 0 1 0\nsd 1");
        session.send(std::string("setboard ") + startPositionFEN);
        session.send("e2e4");
        EXPECT_EQ("# making user move: e2e4", session.nextLine("# making user move: e"));
        session.answersTo("");  // in force mode nothing is answered
        session.send("go");
        const std::string answer = session.nextMove();
        EXPECT_NE(answers.end(), std::find(answers.begin(), answers.end(), answer)) << answer;
        if (HasFailure()) return;
    }
}

std::string stateName(const testing::TestParamInfo<State>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(States, EveryCommand, testing::ValuesIn(states), stateName);

}  // namespace
}  // namespace vatro::test
