// tests/engine/tablebase_session_test.cpp - what the user hears about table files.
#include <filesystem>

#include <gtest/gtest.h>

#include "egtb/table_format.h"
#include "egtb/test_tables.h"
#include "engine/session.h"

namespace vatro::test {
namespace {

TEST(TablebaseSession, TableThatBreaksWhileItIsOpenIsReported) {
    Session session;
    egtb::writeTableOf(session.directory.path.string(), "KQK", {egtb::codeOfPlies(3)});
    EXPECT_EQ(session.allAnswersTo("egtpath gaviota ."),
              Lines{"# initializing TB: type=gaviota path=."});
    const std::string file = session.directory.file(std::string("KQK") + egtb::TableSuffix);
    std::filesystem::resize_file(file, std::filesystem::file_size(file) / 2);
    session.send("setboard k7/8/1K6/8/8/8/8/6Q1 w - -");
    session.send("sd 2");
    session.send("go");
    EXPECT_EQ(session.nextLine("# tablebases"),
              "# tablebases: ignored: KQK.gtb.cp4 can no longer be read; make it again with "
              "vatro-tbgen");
    EXPECT_FALSE(session.nextMove().empty());
}

}  // namespace
}  // namespace vatro::test
