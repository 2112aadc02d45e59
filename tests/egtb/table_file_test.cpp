// tests/egtb/table_file_test.cpp - a broken file gives no answer rather than a wrong one.
#include "egtb/table_file.h"

#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <zlib.h>

#include "test_tables.h"

namespace vatro::egtb {
namespace {

const std::vector<std::uint8_t> someCodes = {0, 2, 0, 4, 6, 3};

/// All values of a table, or nothing when it cannot be read whole.
std::vector<std::uint8_t> allValues(const std::string& path) {
    const OpenedTable opened = TableFile::open(path);
    const auto& table = opened.table;
    EXPECT_EQ(table == nullptr, !opened.faultText().empty());
    if (!table) return {};
    std::vector<std::uint8_t> values;
    std::vector<std::uint8_t> block(table->header().blockSize());
    for (std::uint32_t i = 0; i < table->header().blockCount; ++i) {
        if (!table->readBlock(i, block.data())) return {};
        values.insert(values.end(), block.begin(), block.begin() + table->valuesInBlock(i));
    }
    return values;
}

class TableFileTest : public testing::Test {
  protected:
    void SetUp() override {
        writeTableOf(directory.path(), "KRK", someCodes);
        path = directory.path() + "/KRK" + TableSuffix;
        bytes = readFile(path);
        ASSERT_GT(bytes.size(), std::size_t{HeaderSize});
    }
    TemporaryDirectory directory;
    std::string path;
    std::vector<std::uint8_t> bytes;
};

TEST_F(TableFileTest, ReadsWhatWasWritten) {
    const std::vector<std::uint8_t> values = allValues(path);
    ASSERT_EQ(values.size(), 2U * 462 * 64);
    for (std::size_t i = 0; i < values.size(); ++i) {
        ASSERT_EQ(values[i], someCodes[i % someCodes.size()]);
    }
}

/// Sets the version in a header, and its checksum right again.
void setVersion(std::vector<std::uint8_t>& file, std::uint8_t version) {
    constexpr std::size_t VersionAt = 8;
    constexpr std::size_t ChecksumAt = 60;
    file[VersionAt] = version;
    putLittleEndian(&file[ChecksumAt], crc32(0, file.data(), ChecksumAt), 4);
}

TEST_F(TableFileTest, FilesOfTheFirstVersionAreRead) {
    const std::vector<std::uint8_t> values = allValues(path);
    constexpr std::size_t OrdersAt = 14;
    bytes[OrdersAt] = bytes[OrdersAt + 1] = 0;  // not used by that version
    setVersion(bytes, 1);
    writeFile(path, bytes);
    EXPECT_EQ(allValues(path), values);
}

TEST_F(TableFileTest, NewerVersionIsToldFromDamage) {
    setVersion(bytes, TableVersion + 1);
    bytes.back() ^= 1;  // nobody but the newer program knows whether this matters
    writeFile(path, bytes);
    EXPECT_EQ(TableFile::open(path).fault, TableFault::NewerVersion);
}

TEST_F(TableFileTest, AnyChangedByteIsNoticed) {
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        for (const int bit : {0, 7}) {
            std::vector<std::uint8_t> damaged = bytes;
            damaged[at] ^= static_cast<std::uint8_t>(1 << bit);
            writeFile(path, damaged);
            ASSERT_TRUE(allValues(path).empty()) << "byte " << at;
        }
    }
}

TEST_F(TableFileTest, AnyOtherLengthIsNoticed) {
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        writeFile(path, {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length)});
        ASSERT_TRUE(allValues(path).empty()) << length << " bytes";
    }
    bytes.push_back(0);
    writeFile(path, bytes);
    EXPECT_TRUE(allValues(path).empty());
}

TEST_F(TableFileTest, TellsForeignFilesFromDamagedOnes) {
    bytes[40] ^= 1;
    writeFile(path, bytes);
    EXPECT_EQ(TableFile::open(path).fault, TableFault::Damaged);
    writeFile(path, std::vector<std::uint8_t>(4096, 'x'));
    EXPECT_EQ(TableFile::open(path).fault, TableFault::Foreign);
    EXPECT_EQ(TableFile::open(directory.path() + "/none").fault, TableFault::CannotBeOpened);
}

TEST_F(TableFileTest, PipesAndDirectoriesAreNotWaitedFor) {
    std::filesystem::remove(path);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_TRUE(allValues(path).empty());
    std::filesystem::remove(path);
    std::filesystem::create_directory(path);
    EXPECT_TRUE(allValues(path).empty());
}

TEST_F(TableFileTest, StaysBrokenWhenItChangesWhileOpen) {
    const auto table = TableFile::open(path).table;
    ASSERT_NE(table, nullptr);
    std::vector<std::uint8_t> block(table->header().blockSize());
    EXPECT_TRUE(table->readBlock(1, block.data()));
    ASSERT_EQ(truncate(path.c_str(), static_cast<off_t>(bytes.size() - 1)), 0);
    EXPECT_FALSE(table->readBlock(table->header().blockCount - 1, block.data()));
    EXPECT_TRUE(table->isBroken());
    EXPECT_FALSE(table->readBlock(1, block.data()));
}

}  // namespace
}  // namespace vatro::egtb
