// tests/faults/faults_test.cpp - sessions in which the system refuses one thing after another.
//
// Whatever fails, the engine goes on or ends in order: with status 0, or 1 after saying why. It
// never crashes, never hangs and never plays an illegal move.
#include <fcntl.h>
#include <new>
#include <sys/mman.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "book/book_file.h"
#include "egtb/test_tables.h"
#include "engine/session.h"
#include "faults/fault_kinds.h"
#include "support.h"

namespace vatro::test {
namespace {

constexpr char startFEN[] = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";
constexpr char openFEN[] = "r1bqkbnr/pppp1ppp/2n5/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R w KQkq - 2 3";
constexpr char tableFEN[] = "8/8/8/3k4/8/8/8/KR6 w - - 0 1";
constexpr Key StartKey = 0x463B96181691FC9C;  // of the start position, in the book's format

/// A program that the injector is loaded into, in a directory that it shares with other runs.
class FaultyProcess {
  public:
    /// `fault` as the injector wants it; empty for none.
    FaultyProcess(const ScratchDirectory& directory, const std::string& fault, const Lines& program)
        : counts(map(directory)),
          process(commandLine(directory, fault, program), directory.path.string()) {}
    ~FaultyProcess() { ::munmap(counts, sizeof(FaultCounts)); }
    FaultyProcess(const FaultyProcess&) = delete;
    FaultyProcess& operator=(const FaultyProcess&) = delete;

    unsigned callsOf(FaultKind kind) const { return (*counts)[kind]; }

  private:
    static FaultCounts* map(const ScratchDirectory& directory) {
        const int file = ::open(directory.file("counts").c_str(), O_RDWR | O_CREAT | O_TRUNC, 0600);
        EXPECT_EQ(0, ::ftruncate(file, sizeof(FaultCounts)));
        void* const shared =
            ::mmap(nullptr, sizeof(FaultCounts), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        EXPECT_NE(MAP_FAILED, shared);
        ::close(file);
        return static_cast<FaultCounts*>(shared);
    }
    static Lines commandLine(const ScratchDirectory& directory,
                             const std::string& fault,
                             const Lines& program) {
        Lines line = {"/usr/bin/env", "LD_PRELOAD=" VATRO_FAULT_INJECTOR, "VATRO_FAULT=" + fault,
                      "VATRO_FAULT_COUNTS=" + directory.file("counts")};
        line.insert(line.end(), program.begin(), program.end());
        return line;
    }

    FaultCounts* counts;

  protected:
    ChildProcess process;
};

/// The engine, playing a script.
class FaultySession : public FaultyProcess {
  public:
    FaultySession(const ScratchDirectory& directory, const std::string& fault)
        : FaultyProcess(directory, fault, {engineProgram(), "-cores", "2"}) {}

    /// Plays the script and waits for the end.
    void run() {
        process.send(
            "xboard\nprotover 2\negtpath gaviota tables\noption pawnHashSizeMB=2\n"
            "perft 2\nrandpos 2 positions.txt\ntest positions.txt\nsd 2\n");
        for (const char* fen : {startFEN, openFEN, tableFEN}) {
            process.send(std::string("setboard ") + fen + "\ngo\n");
            const std::string text = process.readUntil("\nmove ");
            output += text;
            if (!text.ends_with("\nmove ")) break;  // it has ended
            const std::string move = process.readLine().value_or("");
            const std::vector<std::string> legal = legalMoves(fen);
            EXPECT_NE(legal.end(), std::find(legal.begin(), legal.end(), move)) << move;
            ++movesMade;
        }
        process.send("new\nquit\n");
        output += process.readAll().value_or("");
        status = process.waitForExit();
        // Anything else fails the test at the end of the process.
        if (status == 1) process.expectEnd(1);
    }

    std::string output;
    int movesMade = 0;
    std::optional<int> status;
};

/// The maker of tables, making one.
class FaultyMaker : public FaultyProcess {
  public:
    FaultyMaker(const ScratchDirectory& directory, const std::string& fault)
        : FaultyProcess(directory, fault, {VATRO_TBGEN, "KQK", "--out", "made"}) {}

    /// Waits for the end.
    void run() {
        output = process.readAll().value_or("");
        status = process.waitForExit();
        process.expectEnd(status.value_or(0));
    }

    std::string output;
    std::optional<int> status;
};

class Faults : public testing::TestWithParam<FaultKind> {
  protected:
    Faults() {
        directory.writeFile("vatro.ini", "ttHashSizeMB=1\npawnHashSizeMB=1\ngtbCacheSizeMB=1\n");
        directory.writeFile("book.bin", bookBytes({{StartKey, bookMove("e2e4")}}));
        std::filesystem::create_directory(directory.path / "tables");
        for (const auto& file : std::filesystem::directory_iterator(egtb::tablesOf({"KRK"}))) {
            std::filesystem::copy_file(file.path(),
                                       directory.path / "tables" / file.path().filename());
        }
    }

    void check(FaultySession& session, const std::string& fault) {
        SCOPED_TRACE(fault);
        session.run();
        SCOPED_TRACE(session.output);
        if (session.status == 1) {
            // Where nothing can be written nobody can be told.
            EXPECT_TRUE(GetParam() == Writing ||
                        session.output.find("# ERROR: ") != std::string::npos);
        } else {
            // What cannot be read has ended.
            EXPECT_EQ(0, session.status);
            EXPECT_TRUE(GetParam() == Reading || session.movesMade == 3);
        }
    }

    std::string order(unsigned n, const char* more = "") const {
        return std::string(faultKindName[GetParam()]) + ':' + std::to_string(n) + more;
    }

    ScratchDirectory directory;
};

TEST_P(Faults, OfOneCallEndNothingInDisorder) {
    FaultySession sound(directory, "");
    sound.run();
    ASSERT_EQ(0, sound.status) << sound.output;
    ASSERT_EQ(3, sound.movesMade) << sound.output;
    const unsigned calls = sound.callsOf(GetParam());
    ASSERT_LT(0U, calls) << "the session asks for nothing of this kind";
    for (unsigned n = 1; n <= calls && !HasFailure(); ++n) {
        FaultySession session(directory, order(n));
        check(session, order(n));
    }
}

TEST_P(Faults, ThatLastEndNothingInDisorder) {
    FaultySession sound(directory, "");
    sound.run();
    const unsigned calls = sound.callsOf(GetParam());
    for (unsigned n = 1; n <= calls && !HasFailure(); n += 1 + n / 4) {
        FaultySession session(directory, order(n, "+"));
        check(session, order(n, "+"));
    }
}

TEST(RenameFault, LeavesNoTableAndNothingInItsWay) {
    const ScratchDirectory directory;
    const std::string table = directory.file("made/KQK.gtb.cp4");
    FaultyMaker failing(directory, "rename:1");
    failing.run();
    EXPECT_EQ(1U, failing.callsOf(Renaming));
    EXPECT_EQ(1, failing.status) << failing.output;
    EXPECT_FALSE(std::filesystem::exists(table));
    EXPECT_FALSE(std::filesystem::exists(table + ".part"));
    FaultyMaker sound(directory, "");
    sound.run();
    EXPECT_EQ(0, sound.status) << sound.output;
    EXPECT_TRUE(std::filesystem::exists(table));
}

std::string kindName(const testing::TestParamInfo<FaultKind>& info) {
    return faultKindName[info.param];
}

INSTANTIATE_TEST_SUITE_P(
    ,
    Faults,
    testing::Values(Allocation, Mapping, ThreadStart, Opening, Reading, Writing),
    kindName);

}  // namespace
}  // namespace vatro::test
