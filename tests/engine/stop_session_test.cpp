// tests/engine/stop_session_test.cpp - commands that take minutes end when the program is to end.
#include <chrono>

#include <gtest/gtest.h>

#include "engine/session.h"

namespace vatro::test {
namespace {

using std::chrono::milliseconds;

/// Each would last for minutes, and prints what it has when it is told to end.
struct LongRun {
    const char* command;
    const char* begun;  // a line that shows that it runs
    const char* result;
};

const LongRun longRuns[] = {
    {"perft 9", "# new size of Perft hash", "# Total leaves: "},
    {"divide 9", "# new size of Perft hash", "Total leaves: "},
    {"selftest", "# Self-test no. 5 passed", "n="},
    {"randgames 100000000", "# Playing", "Total games: "},
    {"randpos 100000000", "", "# rnbqkbnr"},
    {"randpos 100000000 positions.txt", "", "Wrote "},
    {"test many.txt", "Running test no. 1", "# rnbqkbnr"},
};

/// The time from the end of the input, or from "quit", to the end of the program.
milliseconds timeToEnd(const LongRun& run, bool quits) {
    SCOPED_TRACE(run.command);
    using Clock = std::chrono::steady_clock;
    Session session;
    std::string many;
    for (int i = 0; i < 1'000'000; ++i) {
        many += "8/8/8/8/8/8/8/8 w - -\n";
    }
    session.directory.writeFile("many.txt", many);
    session.send(run.command);
    if (*run.begun) session.nextLine(run.begun);
    const auto notWithTheCommand = Clock::now() + milliseconds(300);
    while (Clock::now() < notWithTheCommand) {
        session.process.readLine(milliseconds(10));
    }
    const auto told = Clock::now();
    if (quits) {
        session.send("quit");
    } else {
        session.process.closeInput();
    }
    session.nextLine("# interrupted");
    session.nextLine(run.result);
    EXPECT_EQ(0, session.process.waitForExit());
    return std::chrono::duration_cast<milliseconds>(Clock::now() - told);
}

TEST(LongRun, EndsWhenQuitComes) {
    for (const LongRun& run : longRuns) {
        EXPECT_LT(timeToEnd(run, true), milliseconds(2000)) << run.command;  // 100 when idle
    }
}

TEST(LongRun, EndsWithTheInput) {
    for (const LongRun& run : {longRuns[0], longRuns[3]}) {
        EXPECT_LT(timeToEnd(run, false), milliseconds(2000)) << run.command;
    }
}

TEST(LongRun, OfAScriptIsNotCut) {
    for (const char* const script : {"perft 6\nquit\n", "perft 6\n"}) {
        Session session;
        session.process.send(script);
        session.process.closeInput();
        const std::string output = session.process.readAll().value_or("");
        EXPECT_NE(std::string::npos, output.find("# Total leaves: 119060324\n")) << output;
        EXPECT_EQ(std::string::npos, output.find("interrupted")) << output;
    }
}

}  // namespace
}  // namespace vatro::test
