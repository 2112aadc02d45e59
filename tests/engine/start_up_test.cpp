// tests/engine/start_up_test.cpp - what the program says before its first command.
#include <functional>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "egtb/table_format.h"
#include "egtb/test_tables.h"
#include "engine/session.h"

namespace vatro::test {
namespace {

constexpr char banner[] =
    "# Vatro 0.6.62\n"
    "# a chess engine for XBoard and the terminal\n"
    "# \n"
    "feature done=0\n";

constexpr char startBoard[] =
    "# rnbqkbnr\n# pppppppp\n# ........\n# ........\n# ........\n# ........\n# PPPPPPPP\n# "
    "RNBQKBNR\n"
    "#\n";

std::string outputToPrompt(const Lines& args, std::string_view configuration) {
    Session session(args, configuration, Session::Client::UserOnPipe);
    return session.process.readUntil("# Your move: ");
}

TEST(StartUp, PrintsBannerTablesBoardAndPrompt) {
    EXPECT_EQ(std::string(banner) +
                  "# new size of TT hash: 256 MB\n# new size of Pawn hash: 32 MB\n" + startBoard +
                  "# Your move: ",
              outputToPrompt({}, ""));
}

TEST(StartUp, ReadsTheFileBeforeTheBannerAndTheCommandLineAfterIt) {
    const std::string output =
        outputToPrompt({"-cores", "0", "-fast", "-cores", "1", "-cores"},
                       "numberOfCores = 1\nttHashSizeMB=4096\npawnHashSizeMB = \"3\"\n");
    const std::size_t bannerAt = output.find(banner);
    ASSERT_NE(std::string::npos, bannerAt) << output;
    const std::string before = output.substr(0, bannerAt);
    EXPECT_TRUE(before.starts_with("# will now use 1 cores (requested=1, current=0, max="));
    EXPECT_TRUE(before.ends_with(
        "# WARNING: ttHashSizeMB = 4096 out of range in ini file (min = 1, max = 2048)\n"));
    const std::string after = output.substr(bannerAt + sizeof banner - 1);
    EXPECT_TRUE(after.starts_with(
        "# warning: found bad argument \"0\" for command line option \"-cores\", must be a "
        "positive number\n# warning: found unknown command line option \"-fast\"\n"
        "# will now use 1 cores (requested=1, current=0, max="))
        << after;
    EXPECT_NE(std::string::npos,
              after.find("# warning: missing argument for command line option \"-cores\"\n"
                         "# new size of TT hash: 256 MB\n# new size of Pawn hash: 2 MB\n"))
        << after;
}

TEST(StartUp, SurvivesAnyConfigurationFile) {
    std::string binary;
    for (int i = 0; i < 100000; ++i) {
        binary += static_cast<char>((i * 7919) >> 3);
    }
    std::string oneLine;
    oneLine.resize(20'000'000, 'x');
    for (const std::string& content : {binary, oneLine, std::string("=\n=\n\n#\n\"=\"\"\n")}) {
        EXPECT_TRUE(outputToPrompt({}, content).ends_with("# Your move: "));
    }
}

TEST(StartUp, TakesNoConfigurationButFromARegularFile) {
    const ScratchDirectory directory;
    const std::string path = directory.file("vatro.ini");
    const std::pair<const char*, std::function<void()>> kinds[] = {
        {"a directory", [&] { std::filesystem::create_directory(path); }},
        {"a pipe without a writer", [&] { ASSERT_EQ(0, ::mkfifo(path.c_str(), 0600)); }},
        {"an endless device", [&] { std::filesystem::create_symlink("/dev/zero", path); }},
    };
    for (const auto& [kind, make] : kinds) {
        SCOPED_TRACE(kind);
        make();
        ChildProcess process({engineProgram()}, directory.path.string());
        const std::string output = process.readUntil("# Your move: ");
        EXPECT_TRUE(output.starts_with("# WARNING: ini file is no regular file, ignored\n# Vatro"))
            << output;
        std::filesystem::remove(path);
    }
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool HasSanitizer = true;  // which needs terabytes of addresses
#else
constexpr bool HasSanitizer = false;
#endif

/// The command line of an engine that a shell starts after `preparation`.
Lines afterShell(const std::string& preparation) {
    return {"/bin/sh", "-c", preparation + "; exec " + engineProgram()};
}

TEST(Limits, WithoutMemoryOneLineSaysSo) {
    if (HasSanitizer) GTEST_SKIP() << "limits the address space";
    const ScratchDirectory directory;
    ChildProcess process(afterShell("ulimit -v 12000"), directory.path.string());
    const std::string output = process.readAll().value_or("");
    EXPECT_EQ(1, process.waitForExit());
    process.expectEnd(1);
    const std::size_t error = output.find("# ERROR: ");
    EXPECT_NE(std::string::npos, error) << output;
    EXPECT_EQ(std::string::npos, output.find("# ERROR: ", error + 1)) << output;
}

TEST(Limits, WithLittleMemoryTheEnginePlays) {
    if (HasSanitizer) GTEST_SKIP() << "limits the address space";
    const ScratchDirectory directory;
    ChildProcess process(afterShell("ulimit -v 100000"), directory.path.string());
    process.send("xboard\nsd 2\ngo\n");
    EXPECT_TRUE(process.readUntil("\nmove ").ends_with("\nmove ")) << process.lastLines();
}

TEST(Limits, ATableCacheThatFindsNoMemoryLeavesTheOldOne) {
    if (HasSanitizer) GTEST_SKIP() << "limits the address space";
    const ScratchDirectory directory;
    directory.writeFile("vatro.ini", smallTables);
    egtb::writeTableOf(directory.path.string(), "KQK", {egtb::codeOfPlies(3)});
    ChildProcess process(afterShell("ulimit -v 200000"), directory.path.string());
    process.send("xboard\negtpath gaviota .\noption gtbCacheSizeMB=256\n");
    EXPECT_TRUE(process.readUntil("# ERROR: no memory for the tablebases\n").ends_with('\n'))
        << process.lastLines();
    process.send("protover 2\nsetboard 8/8/8/3k4/8/8/8/KQ6 w - -\nsd 2\ngo\n");
    const std::string answers = process.readUntil("\nmove ");
    EXPECT_NE(answers.find("gtbCacheSizeMB -spin 16 0 256"), std::string::npos);
    EXPECT_NE(answers.find("# tbHits = "), std::string::npos);
    EXPECT_EQ(answers.find("# tbHits = 0\n"), std::string::npos) << "the tables are open again";
}

// Right after the start new pages would be the quicker way to empty tables.
TEST(Limits, ANewGameNeedsNoMoreMemory) {
    if (HasSanitizer) GTEST_SKIP() << "limits the address space";
    const ScratchDirectory directory;
    ChildProcess process(afterShell("ulimit -v 420000"), directory.path.string());
    process.send("xboard\nsd 1\ngo\n");
    process.readUntil("\nmove ");
    process.send("new\nping 1\n");
    const std::string answer = process.readUntil("pong 1");
    EXPECT_NE(std::string::npos, answer.find("# new size of TT hash: 256 MB\n")) << answer;
    EXPECT_EQ(std::string::npos, answer.find("ERROR")) << answer;
}

TEST(Limits, TheSystemsSmallStackIsNotTheSearchs) {
    if (HasSanitizer) GTEST_SKIP() << "the main thread needs more";
    const ScratchDirectory directory;
    directory.writeFile("vatro.ini", smallTables);
    // Threads of the system's stack overflow it by depth 70; the main thread makes do with it.
    ChildProcess process(afterShell("ulimit -s 96"), directory.path.string());
    process.send("xboard\nsetboard 6k1/6p1/8/7Q/8/8/rq6/7K w - - 0 1\nanalyze\n");
    EXPECT_TRUE(process.readUntil("\n71 ").ends_with("\n71 ")) << process.lastLines();
    process.send("exit\nping 1\n");
    EXPECT_TRUE(process.readUntil("pong 1").ends_with("pong 1")) << process.lastLines();
}

TEST(Limits, ASilentAnalysisEndsWithItsReader) {
    const ScratchDirectory directory;
    directory.writeFile("vatro.ini", smallTables);
    ChildProcess process(afterShell("trap '' PIPE"), directory.path.string());
    process.send("xboard\nnopost\nanalyze\nping 1\n");
    EXPECT_TRUE(process.readUntil("pong 1").ends_with("pong 1"));
    process.closeOutput();
    const std::optional<int> status = process.waitForExit();
    ASSERT_TRUE(status);
    process.expectEnd(*status == 1 ? 1 : 0);
}

TEST(Features, ComeInOrderWithTheCurrentValues) {
    Session session;
    session.answersTo("option gtbCacheSizeMB=0\noption bookFilePath=my.bin\negtpath gaviota here");
    const Lines expected = {"feature ping=1",
                            "feature setboard=1",
                            "feature playother=1",
                            "feature usermove=1",
                            "feature colors=0",
                            "feature sigint=0",
                            "feature sigterm=0",
                            "feature analyze=1",
                            "feature name=0",
                            "feature nps=0",
                            "feature debug=1",
                            "feature egt=\"gaviota\"",
                            "feature smp=1",
                            "feature variants=\"normal\"",
                            "feature option=\"ttHashSizeMB -spin 4 1 2048\"",
                            "feature option=\"pawnHashSizeMB -spin 1 1 2048\"",
                            "feature option=\"gtbCacheSizeMB -spin 0 0 256\"",
                            "feature option=\"gtbPath -path here\"",
                            "feature option=\"bookFilePath -path my.bin\"",
                            "feature myname=\"Vatro 0.6.62\"",
                            "feature done=1"};
    EXPECT_EQ(expected, session.answersTo("protover 2"));
}

}  // namespace
}  // namespace vatro::test
