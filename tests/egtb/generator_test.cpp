// tests/egtb/generator_test.cpp - whole tables, and what may go wrong while they are made.
#include "egtb/generator/generator.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <optional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>

#include <gtest/gtest.h>

#include "egtb/generator/loaded_table.h"
#include "egtb/generator/resources.h"
#include "egtb/generator/verify.h"
#include "test_tables.h"

namespace vatro::egtb {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool HasSanitizer = true;  // which takes ten times the time and the memory
#else
constexpr bool HasSanitizer = false;
#endif

bool acceptPart(double) { return true; }

Status makeIn(const std::string& directory, const std::vector<Material>& list) {
    GeneratorOptions options;
    options.directory = directory;
    GeneratorListener listener;
    return makeTables(list, options, listener);
}

std::size_t filesIn(const std::string& directory) {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(directory),
                                                  std::filesystem::directory_iterator()));
}

TEST(Generator, LongestMatesAreThoseOfTheLiterature) {
    const std::pair<const char*, int> cases[] = {{"KQK", 10},  {"KRK", 16},  {"KPK", 28},
                                                 {"KBNK", 33}, {"KQKR", 35}, {"KBK", 0}};
    for (const auto& [ending, moves] : cases) {
        TableStatistics statistics;
        const Status status =
            countTable(smallTables(), *parseMaterial(ending), Workers{2}, statistics);
        ASSERT_TRUE(status.isGood()) << status.line();
        EXPECT_EQ((statistics.side[White].longestWin + 1) / 2, moves) << ending;
        EXPECT_EQ(statistics.side[Black].longestLoss, 2 * moves) << ending;
    }
}

void expectVerified(const std::string& directory, const std::vector<std::string>& endings) {
    for (const std::string& ending : endings) {
        const Status status =
            verifyTable(directory, *parseMaterial(ending), Workers{2}, acceptPart);
        EXPECT_TRUE(status.isGood()) << status.line();
    }
}

TEST(Generator, EveryValueFollowsFromTheMoves) {
    expectVerified(smallTables(), {"KQK", "KRK", "KNK", "KPK"});
}

TEST(FourPieces, EveryValueFollowsFromTheMoves) {
    expectVerified(tablesOf({"KBNK", "KQKR", "KPKP"}), {"KBNK", "KQKR", "KPKP"});
}

TEST(Generator, VerificationFindsAWrongValue) {
    const Material material = *parseMaterial("KRK");
    LoadedTable table;
    ASSERT_TRUE(table.load(smallTables(), material, Workers{}).isGood());
    std::vector<std::uint8_t> codes;
    const PositionIndex index(material);
    for (std::uint64_t number = 0; number < 2 * index.size(); ++number) {
        Position position;
        index.decode(number % index.size(), position);
        if (number >= index.size()) position.sideToMove = Black;
        codes.push_back(table.codeOf(position, false));
    }
    TemporaryDirectory directory;
    writeTableOf(directory.path(), "KRK", codes);
    Status status = verifyTable(directory.path(), material, Workers{}, acceptPart);
    EXPECT_TRUE(status.isGood()) << status.line();
    // A mate is stored as a loss in three moves.
    const Position mate = positionOf("8/8/8/8/8/1K6/8/1k2R3 b");
    const std::uint64_t at = index.size() + index.encode(mate);
    codes[at] = codeOfPlies(6);
    writeTableOf(directory.path(), "KRK", codes);
    status = verifyTable(directory.path(), material, Workers{}, acceptPart);
    EXPECT_NE(status.line().find(" is stored as "), std::string::npos) << status.line();
}

TEST(Generator, InterruptedCountIsNotTakenForAWholeOne) {
    const Material material = *parseMaterial("KQKR");
    TableStatistics whole;
    ASSERT_TRUE(countTable(smallTables(), material, Workers{1}, whole).isGood());
    // Interrupted later and later, until there is nothing left to interrupt.
    for (int delay = 1;; delay *= 2) {
        std::atomic<bool> stop{false};
        std::thread interrupter([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(delay));
            stop = true;
        });
        TableStatistics counted;
        const Status status = countTable(smallTables(), material, Workers{1, &stop}, counted);
        const bool isInTime = !stop;
        interrupter.join();
        if (!status.isGood()) {
            EXPECT_EQ(status.line(), "interrupted");
            continue;
        }
        EXPECT_EQ(counted.side[White].wins, whole.side[White].wins) << "after " << delay << " ms";
        if (isInTime) break;
    }
}

TEST(Generator, FinishedTablesAreKept) {
    TemporaryDirectory directory;
    const std::vector<Material> list = allMaterials(3);
    ASSERT_TRUE(makeIn(directory.path(), list).isGood());
    const std::string kept = tablePath(directory.path(), *parseMaterial("KQK"));
    const auto oldTime = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
    std::filesystem::last_write_time(kept, oldTime);
    ASSERT_TRUE(makeIn(directory.path(), list).isGood());
    EXPECT_EQ(std::filesystem::last_write_time(kept), oldTime);
}

/// Stops the work after some steps.
struct Interrupter : GeneratorListener {
    int stepsLeft = 0;

    bool advances(const char*, double part) override {
        EXPECT_GE(part, 0);
        EXPECT_LE(part, 1);
        return --stepsLeft >= 0;
    }
};

TEST(Generator, InterruptedRunLeavesNothingHalfMadeAndIsResumed) {
    TemporaryDirectory directory;
    GeneratorOptions options;
    options.directory = directory.path();
    options.workers.threads = 2;
    const std::vector<Material> list = {*parseMaterial("KQK"), *parseMaterial("KRK")};
    // Stopped at each step in turn, at last at none.
    int steps = 0;
    for (int allowed = 0;; ++allowed) {
        Interrupter interrupter;
        interrupter.stepsLeft = allowed;
        const Status status = makeTables(list, options, interrupter);
        std::size_t complete = 0;
        for (const Material& material : list) {
            complete += checkTable(directory.path(), material).state == TableState::Complete;
        }
        EXPECT_EQ(filesIn(directory.path()), complete);
        if (status.isGood()) break;
        EXPECT_EQ(status.line(), "interrupted");
        ++steps;
    }
    EXPECT_GT(steps, 20);
}

TEST(Generator, FilesOfOthersAndNewerOnesAreLeftAlone) {
    TemporaryDirectory directory;
    const Material material = *parseMaterial("KQK");
    const std::string path = tablePath(directory.path(), material);
    ASSERT_TRUE(makeIn(directory.path(), {material}).isGood());
    std::vector<std::uint8_t> newer = readFile(path);
    constexpr std::size_t VersionAt = 8;
    newer[VersionAt] = TableVersion + 1;
    const std::vector<std::uint8_t> foreign(100, 'x');
    const std::pair<const char*, std::vector<std::uint8_t>> cases[] = {
        {"is not a table of this program and is left alone", foreign},
        {"has a newer format than this program knows and is left alone", newer},
    };
    for (const auto& [line, bytes] : cases) {
        writeFile(path, bytes);
        // Found before anything else is done.
        const Status status = makeIn(directory.path(), {*parseMaterial("KRK"), material});
        EXPECT_NE(status.line().find(line), std::string::npos) << status.line();
        EXPECT_EQ(readFile(path), bytes);
        EXPECT_EQ(filesIn(directory.path()), 1U);
    }
    std::filesystem::remove(path);
    std::filesystem::create_symlink("elsewhere", path);
    EXPECT_EQ(makeIn(directory.path(), {material}).line(),
              path + " is a link to a file that is not there; remove it");
}

TEST(Generator, DamagedAndEmptyFilesAreMadeAgain) {
    TemporaryDirectory directory;
    const Material material = *parseMaterial("KRK");
    const std::string path = tablePath(directory.path(), material);
    ASSERT_TRUE(makeIn(directory.path(), {material}).isGood());
    const std::vector<std::uint8_t> whole = readFile(path);
    std::vector<std::uint8_t> damaged = whole;
    damaged[damaged.size() / 2] ^= 1;  // in a block, not in the header or the index
    const std::pair<const char*, std::vector<std::uint8_t>> cases[] = {
        {"a block", damaged},
        {"half a file", {whole.begin(), whole.begin() + 300}},
        {"nothing", {}},
    };
    for (const auto& [what, bytes] : cases) {
        writeFile(path, bytes);
        EXPECT_EQ(checkTable(directory.path(), material).state, TableState::Damaged) << what;
        const Status status = makeIn(directory.path(), {material});
        EXPECT_TRUE(status.isGood()) << what << ": " << status.line();
        EXPECT_EQ(readFile(path), whole) << what;
    }
}

/// Makes KPK from tables in which every promotion mates in as many plies. The length of the longest
/// mate, or nothing when the table cannot be made.
std::optional<int> longestKPK(int pliesAfterPromotion) {
    TemporaryDirectory directory;
    for (const char* ending : {"KQK", "KRK", "KBK", "KNK"}) {
        writeTableOf(directory.path(), ending, {codeOfPlies(pliesAfterPromotion)});
    }
    const Material material = *parseMaterial("KPK");
    const Status made = makeIn(directory.path(), {material});
    if (!made.isGood()) {
        EXPECT_NE(made.line().find("more than 254 plies"), std::string::npos) << made.line();
        EXPECT_EQ(checkTable(directory.path(), material).state, TableState::Missing);
        return std::nullopt;
    }
    const Status verified = verifyTable(directory.path(), material, Workers{}, acceptPart);
    EXPECT_TRUE(verified.isGood()) << verified.line();
    return TableFile::open(tablePath(directory.path(), material)).table->header().maxPlies;
}

TEST(Generator, LongestMateMayBeAsLongAsTheFormatHolds) {
    const std::optional<int> longest = longestKPK(200);
    ASSERT_TRUE(longest);
    const int toTheLimit = 200 + MaxPlies - *longest;
    EXPECT_EQ(longestKPK(toTheLimit), MaxPlies);
    EXPECT_EQ(longestKPK(toTheLimit + 2), std::nullopt);
}

TEST(FivePieces, DoubleStepMayForceACaptureThatAvertsAStalemate) {
    const Material material = *parseMaterial("KQPKP");
    if (HasSanitizer || availableMemory() < memoryToMake(material)) GTEST_SKIP() << "large";
    // Every exit from the ending is drawn, but for the loss of White's pawn, after which the side
    // to move wins.
    TemporaryDirectory directory;
    for (const Material& needed : successors(material)) {
        const bool isAfterCapture = needed == *parseMaterial("KQKP");
        writeTableOf(directory.path(), needed.name(), {isAfterCapture ? codeOfPlies(1) : DrawCode});
    }
    const Status made = makeIn(directory.path(), {material});
    ASSERT_TRUE(made.isGood()) << made.line();
    TablebaseState tables;
    ASSERT_TRUE(tables.initialise(directory.path(), 0));
    // After b2-b4 Black has no move but the capture; after b2-b3 he has Ka5 too.
    const Position before = positionOf("1Q6/8/k7/8/2p5/2K5/1P6/8 w");
    const Position after = positionOf("1Q6/8/k7/8/1Pp5/2K5/8/8 b");
    EXPECT_EQ(answer(tables, queryOf(after)), "draw");
    EXPECT_EQ(answer(tables, queryOf(after, as64(B3))), "W 2");
    EXPECT_EQ(answer(tables, queryOf(before)), "W 3");
}

TEST(Generator, PartFileIsNeitherLinkNorPipe) {
    TemporaryDirectory directory;
    const Material material = *parseMaterial("KQK");
    const std::string part = tablePath(directory.path(), material) + ".part";
    const std::string precious = directory.path() + "/precious";
    writeFile(precious, {1, 2, 3});
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"pipe", [&] { ASSERT_EQ(mkfifo(part.c_str(), 0600), 0); }},
        {"link", [&] { std::filesystem::create_symlink(precious, part); }},
        {"hard link", [&] { std::filesystem::create_hard_link(precious, part); }},
    };
    for (const auto& [what, create] : cases) {
        create();
        // Found before the first table is made.
        const Status status = makeIn(directory.path(), {*parseMaterial("KRK"), material});
        EXPECT_EQ(status.line(), part + ": is not a plain file; remove it") << what;
        EXPECT_EQ(readFile(precious), (std::vector<std::uint8_t>{1, 2, 3})) << what;
        EXPECT_EQ(filesIn(directory.path()), 2U) << what;
        std::filesystem::remove(part);
    }
}

/// Counts the tables that a run made and those that it found made by another.
struct Counter : GeneratorListener {
    int made = 0;
    int found = 0;

    void tableEnds(const Material&, std::uint64_t) override { ++made; }
    void tableIsThere(const Material&) override { ++found; }
};

TEST(GeneratorThreads, TwoRunsInOneDirectoryShareTheWork) {
    TemporaryDirectory directory;
    const std::vector<Material> list = allMaterials(3);
    Counter counters[2];
    std::vector<std::thread> runs;
    // Locks belong to open files, so two threads exclude each other as two processes do.
    for (Counter& counter : counters) {
        runs.emplace_back([&] {
            GeneratorOptions options;
            options.directory = directory.path();
            const Status status = makeTables(list, options, counter);
            EXPECT_TRUE(status.isGood()) << status.line();
        });
    }
    for (std::thread& run : runs) {
        run.join();
    }
    EXPECT_EQ(counters[0].made + counters[1].made, static_cast<int>(list.size()));
    EXPECT_EQ(filesIn(directory.path()), list.size());
}

TEST(Generator, StopIsHeardWhileSmallerTablesAreRead) {
    TemporaryDirectory directory;
    std::filesystem::copy(smallTables(), directory.path());
    std::filesystem::remove(tablePath(directory.path(), *parseMaterial("KQKR")));
    std::atomic<bool> stop{false};
    /// Stops as soon as the reading begins.
    struct Stopper : GeneratorListener {
        explicit Stopper(std::atomic<bool>& flag) : stopFlag(flag) {}
        bool advances(const char* step, double) override {
            EXPECT_STREQ(step, "reading smaller endings");
            stopFlag = true;
            return true;
        }
        std::atomic<bool>& stopFlag;
    } stopper(stop);
    GeneratorOptions options;
    options.directory = directory.path();
    options.workers.stop = &stop;
    const Status status = makeTables({*parseMaterial("KQKR")}, options, stopper);
    EXPECT_EQ(status.line(), "interrupted");
}

TEST(Generator, MissingOrUnusableSmallerTableIsNamed) {
    TemporaryDirectory directory;
    const std::vector<Material> list = {*parseMaterial("KPK")};
    const std::string needed = tablePath(directory.path(), *parseMaterial("KNK"));
    EXPECT_EQ(makeIn(directory.path(), list).line(),
              "KPK needs KNK, but " + needed +
                  " cannot be opened: No such file or directory; make it first");
    EXPECT_EQ(filesIn(directory.path()), 0U);
    writeFile(needed, std::vector<std::uint8_t>(100, 'x'));
    EXPECT_EQ(makeIn(directory.path(), list).line(),
              "KPK needs KNK, but " + needed +
                  " is not a table of this program; move it away to have one made");
}

TEST(Generator, FullDiskIsAnErrorThatLeavesNothing) {
    TemporaryDirectory directory;
    // A limit on the size of files stands for a full disk.
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{2000, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    const Status status = makeIn(directory.path(), {*parseMaterial("KQK")});
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_NE(status.line().find("KQK"), std::string::npos) << status.line();
    EXPECT_EQ(filesIn(directory.path()), 0U);
}

}  // namespace
}  // namespace vatro::egtb
