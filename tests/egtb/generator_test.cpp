// tests/egtb/generator_test.cpp - whole tables, and what may go wrong while they are made.
#include "egtb/generator/generator.h"

#include <csignal>
#include <filesystem>
#include <sys/resource.h>

#include <gtest/gtest.h>

#include "egtb/generator/loaded_table.h"
#include "egtb/generator/verify.h"
#include "test_tables.h"

namespace vatro::egtb {
namespace {

bool acceptPart(double) { return true; }

std::size_t filesIn(const std::string& directory) {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(directory),
                                                  std::filesystem::directory_iterator()));
}

TEST(Generator, LongestMatesAreThoseOfTheLiterature) {
    const std::pair<const char*, int> cases[] = {{"KQK", 10},  {"KRK", 16},  {"KPK", 28},
                                                 {"KBNK", 33}, {"KQKR", 35}, {"KBK", 0}};
    for (const auto& [ending, moves] : cases) {
        TableStatistics statistics;
        std::string error;
        ASSERT_TRUE(countTable(smallTables(), *parseMaterial(ending), 2, statistics, error))
            << error;
        EXPECT_EQ((statistics.side[White].longestWin + 1) / 2, moves) << ending;
        EXPECT_EQ(statistics.side[Black].longestLoss, 2 * moves) << ending;
    }
}

void expectVerified(const std::string& directory, const std::vector<std::string>& endings) {
    for (const std::string& ending : endings) {
        std::string error;
        EXPECT_TRUE(verifyTable(directory, *parseMaterial(ending), 2, acceptPart, error)) << error;
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
    std::string error;
    ASSERT_TRUE(table.load(smallTables(), material, 1, error));
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
    EXPECT_TRUE(verifyTable(directory.path(), material, 1, acceptPart, error)) << error;
    // Black is mated on b1 by a rook on a1: in three moves instead.
    const Position mate = positionOf("8/8/8/8/8/1K6/8/Rk6 b");
    const std::uint64_t at = index.size() + index.encode(mate);
    codes[at] = codeOfPlies(6);
    writeTableOf(directory.path(), "KRK", codes);
    EXPECT_FALSE(verifyTable(directory.path(), material, 1, acceptPart, error));
    EXPECT_FALSE(error.empty());
}

TEST(Generator, FinishedTablesAreKeptAndDamagedOnesMadeAgain) {
    TemporaryDirectory directory;
    GeneratorOptions options;
    options.directory = directory.path();
    const std::vector<Material> list = allMaterials(3);
    std::string error;
    ASSERT_TRUE(makeTables(list, options, error)) << error;
    const std::string kept = tablePath(directory.path(), *parseMaterial("KQK"));
    const std::string damaged = tablePath(directory.path(), *parseMaterial("KRK"));
    const std::vector<std::uint8_t> whole = readFile(damaged);
    const auto oldTime = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
    std::filesystem::last_write_time(kept, oldTime);
    std::filesystem::resize_file(damaged, whole.size() / 2);
    ASSERT_TRUE(makeTables(list, options, error)) << error;
    EXPECT_EQ(std::filesystem::last_write_time(kept), oldTime);
    EXPECT_EQ(readFile(damaged), whole) << "the same on every run";
}

TEST(Generator, InterruptedRunLeavesNothingHalfMadeAndIsResumed) {
    TemporaryDirectory directory;
    GeneratorOptions options;
    options.directory = directory.path();
    options.threads = 2;
    const std::vector<Material> list = {*parseMaterial("KQK"), *parseMaterial("KRK")};
    // Stopped at each step in turn, at last at none.
    std::string error;
    int steps = 0;
    for (int allowed = 0;; ++allowed) {
        int left = allowed;
        options.progress = [&](const TableProgress& progress) {
            EXPECT_GE(progress.part, 0);
            EXPECT_LE(progress.part, 1);
            return --left >= 0;
        };
        const bool isDone = makeTables(list, options, error);
        std::size_t complete = 0;
        for (const Material& material : list) {
            complete += tableState(directory.path(), material) == TableState::Complete;
        }
        EXPECT_EQ(filesIn(directory.path()), complete);
        if (isDone) break;
        EXPECT_EQ(error, "interrupted");
        ++steps;
    }
    EXPECT_GT(steps, 20);
}

TEST(Generator, ForeignFilesAreLeftAlone) {
    TemporaryDirectory directory;
    const std::string path = tablePath(directory.path(), *parseMaterial("KQK"));
    const std::vector<std::uint8_t> foreign(100, 'x');
    writeFile(path, foreign);
    GeneratorOptions options;
    options.directory = directory.path();
    std::string error;
    EXPECT_FALSE(makeTables({*parseMaterial("KQK")}, options, error));
    EXPECT_NE(error.find("was not written by this program"), std::string::npos) << error;
    EXPECT_EQ(readFile(path), foreign);
}

TEST(Generator, MissingSmallerTableIsNamed) {
    TemporaryDirectory directory;
    GeneratorOptions options;
    options.directory = directory.path();
    std::string error;
    EXPECT_FALSE(makeTable(*parseMaterial("KPK"), options, error));
    EXPECT_NE(error.find(TableSuffix), std::string::npos) << error;
    EXPECT_EQ(filesIn(directory.path()), 0U);
}

TEST(Generator, FullDiskIsAnErrorThatLeavesNothing) {
    TemporaryDirectory directory;
    GeneratorOptions options;
    options.directory = directory.path();
    // A limit on the size of files stands for a full disk.
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{2000, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    std::string error;
    const bool isDone = makeTable(*parseMaterial("KQK"), options, error);
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_FALSE(isDone);
    EXPECT_NE(error.find("KQK"), std::string::npos) << error;
    EXPECT_EQ(filesIn(directory.path()), 0U);
}

}  // namespace
}  // namespace vatro::egtb
