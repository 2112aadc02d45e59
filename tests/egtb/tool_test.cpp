// tests/egtb/tool_test.cpp - vatro-tbgen as a program: signals, and runs by make.
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "egtb/generator/generator.h"
#include "test_tables.h"

namespace vatro::egtb {
namespace {

/// Starts the tool with `arguments`; its output goes to a file.
pid_t startTool(const std::vector<std::string>& arguments, const std::string& output) {
    std::vector<char*> argv;
    static std::string program = VATRO_TBGEN;
    argv.push_back(program.data());
    std::vector<std::string> copies = arguments;
    for (std::string& argument : copies) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);
    const pid_t child = fork();
    if (child != 0) return child;
    const int file = open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(file, STDOUT_FILENO);
    dup2(file, STDERR_FILENO);
    execv(argv[0], argv.data());
    _exit(127);
}

/// The exit status of a program; -1 when a signal killed it.
int exitStatusOf(pid_t child) {
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// Waits until the tool has begun to make a table.
void waitForPartFile(const std::string& directory) {
    for (int tries = 0; tries < 1000; ++tries) {
        for (const auto& entry : std::filesystem::directory_iterator(directory)) {
            if (entry.path().extension() == ".part") return;
        }
        usleep(1000);
    }
    FAIL() << "no table was begun";
}

class HangUp : public testing::TestWithParam<bool> {};

TEST_P(HangUp, EndsTheRunUnlessTheCallerIgnoresIt) {
    const bool isIgnored = GetParam();
    TemporaryDirectory directory;
    TemporaryDirectory output;
    // The child inherits what nohup sets.
    const auto before = std::signal(SIGHUP, isIgnored ? SIG_IGN : SIG_DFL);
    const pid_t child =
        startTool({"KPK", "KQKR", "--out", directory.path()}, output.path() + "/log");
    std::signal(SIGHUP, before);
    waitForPartFile(directory.path());
    kill(child, SIGHUP);
    const int status = exitStatusOf(child);
    EXPECT_EQ(status, isIgnored ? EXIT_SUCCESS : EXIT_FAILURE);
    const bool isMade =
        checkTable(directory.path(), *parseMaterial("KQKR")).state == TableState::Complete;
    EXPECT_EQ(isMade, isIgnored);
    for (const auto& entry : std::filesystem::directory_iterator(directory.path())) {
        EXPECT_NE(entry.path().extension(), ".part");
    }
}

INSTANTIATE_TEST_SUITE_P(Tool, HangUp, testing::Bool());

TEST(Tool, TablesMadeByMakeAreTheSameBytes) {
    if (std::system("make --version > /dev/null 2>&1") != 0) GTEST_SKIP() << "no make";
    TemporaryDirectory directory;
    const std::string makefile = directory.path() + "/Makefile";
    const std::string tool = VATRO_TBGEN;
    const std::string tables = directory.path() + "/tables";
    ASSERT_EQ(std::system((tool + " --pieces 3 --makefile > " + makefile).c_str()), 0);
    const std::string make = "make -s -j2 -f " + makefile + " TBGEN=" + tool + " OUT=" + tables +
                             " RUN='env MEM=$(MEM)' > /dev/null";
    ASSERT_EQ(std::system(make.c_str()), 0);
    std::size_t compared = 0;
    for (const auto& entry : std::filesystem::directory_iterator(tables)) {
        const std::string name = entry.path().filename().string();
        EXPECT_EQ(readFile(entry.path().string()), readFile(smallTables() + "/" + name)) << name;
        ++compared;
    }
    EXPECT_EQ(compared, allMaterials(3).size());
}

TEST(Tool, OnlyTheNamedEndingIsMadeWhenItsNeedsAreThere) {
    TemporaryDirectory directory;
    TemporaryDirectory output;
    const auto run = [&](const char* ending) {
        return exitStatusOf(
            startTool({"--only", ending, "--out", directory.path()}, output.path() + "/log"));
    };
    EXPECT_EQ(run("KPK"), EXIT_FAILURE);
    const std::vector<std::uint8_t> log = readFile(output.path() + "/log");
    EXPECT_NE(std::string(log.begin(), log.end()).find("KPK needs KNK"), std::string::npos);
    for (const char* ending : {"KQK", "KRK", "KBK", "KNK", "KPK"}) {
        EXPECT_EQ(run(ending), EXIT_SUCCESS) << ending;
    }
}

}  // namespace
}  // namespace vatro::egtb
