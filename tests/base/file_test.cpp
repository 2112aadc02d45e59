// tests/base/file_test.cpp - files that are read while they change, and files with one writer.
#include "base/file.h"

#include <algorithm>
#include <cerrno>
#include <fstream>

#include <gtest/gtest.h>

namespace vatro {
namespace {

/// A folder for one test, with a name that no old character set has.
class FileTest : public testing::Test {
  protected:
    FileTest() { std::filesystem::create_directory(standardPath(folder)); }
    ~FileTest() override {
        std::error_code ignored;
        std::filesystem::remove_all(standardPath(folder), ignored);
    }

    std::string in(const std::string& name) const { return pathIn(folder, name); }
    std::string write(const std::string& name, const std::string& content) const {
        std::ofstream(standardPath(in(name)), std::ios::binary) << content;
        return in(name);
    }

    const std::string folder =
        pathIn(testing::TempDir(),
               std::string("vatro è таблица ") +
                   testing::UnitTest::GetInstance()->current_test_info()->name());
};

std::string readAll(const File& file) {
    std::string content(file.size().value_or(0), '\0');
    EXPECT_TRUE(file.readAt(0, content.data(), content.size()));
    return content;
}

TEST_F(FileTest, ReadsWholeRangesOnly) {
    const File file = File::openForReading(write("a", "0123456789"));
    char bytes[4] = {};
    EXPECT_TRUE(file.readAt(6, bytes, 4));
    EXPECT_EQ(std::string(bytes, 4), "6789");
    errno = EIO;
    EXPECT_FALSE(file.readAt(7, bytes, 4));
    EXPECT_EQ(errno, 0) << "the end of a file is no fault of the system";
    EXPECT_FALSE(File::openForReading(in("none")).isOpen());
    EXPECT_EQ(errno, ENOENT);
    const File opened = File::openForReading(folder);
    EXPECT_FALSE(opened.isOpen() && opened.size());
}

TEST_F(FileTest, AReaderKeepsTheFileThatWasReplaced) {
    const File old = File::openForReading(write("table", "old"));
    ASSERT_TRUE(renameFile(write("part", "new one"), in("table")));
    EXPECT_EQ(readAll(old), "old");
    EXPECT_EQ(readAll(File::openForReading(in("table"))), "new one");
    EXPECT_FALSE(File::openForReading(in("part")).isOpen());
}

TEST_F(FileTest, HasOneWriterAtATime) {
    write("part", "left by a program that was killed");
    File first;
    File second;
    ASSERT_EQ(first.claim(in("part")), File::Claim::Held);
    EXPECT_EQ(first.size(), 0U);
    EXPECT_EQ(second.claim(in("part")), File::Claim::Taken);
    EXPECT_TRUE(first.writeAt(3, "def", 3) && first.writeAt(0, "abc", 3) && first.sync());
    // Held while it changes its name; whoever comes next makes a file of its own.
    ASSERT_TRUE(renameFile(in("part"), in("table")));
    EXPECT_EQ(second.claim(in("part")), File::Claim::Held);
    EXPECT_EQ(readAll(File::openForReading(in("table"))), "abcdef");
    second.close();
    EXPECT_EQ(File().claim(in("part")), File::Claim::Held);
    std::filesystem::create_directory(standardPath(in("folder")));
    EXPECT_EQ(File().claim(in("folder")), File::Claim::NotPlain);
}

TEST_F(FileTest, FoldersAreListedByTheirNames) {
    write("ж.gtb", "");
    std::vector<std::string> names;
    ASSERT_TRUE(listFolder(folder, names));
    EXPECT_NE(std::find(names.begin(), names.end(), "ж.gtb"), names.end());
    EXPECT_FALSE(listFolder(in("none"), names));
}

}  // namespace
}  // namespace vatro
