// tests/engine/tablebase_session_test.cpp - what the user hears about table files.
#include <filesystem>

#include <gtest/gtest.h>

#include "egtb/table_format.h"
#include "egtb/test_tables.h"
#include "engine/session.h"

namespace vatro::test {
namespace {

const Lines opening{"# initializing TB: type=gaviota path=."};

TEST(TablebaseSession, SaysHowManyTablesItHasFound) {
    Session session;
    EXPECT_EQ(session.allAnswersTo("egtpath gaviota ."), opening);
    for (const char* const ending : {"KQK", "KRK"}) {
        egtb::writeTableOf(session.directory.path.string(), ending, {egtb::codeOfPlies(3)});
    }
    session.directory.writeFile(std::string("KPK") + egtb::TableSuffix, "no table");
    const Lines answers = session.allAnswersTo("egtpath gaviota .");
    ASSERT_EQ(answers.size(), 3U);
    EXPECT_TRUE(answers[1].starts_with("# tablebases: ignored: KPK.gtb.cp4"));
    EXPECT_EQ(answers[2], "# tablebases found: 2");
}

TEST(TablebaseSession, TableThatBreaksWhileItIsOpenIsReportedAtOnce) {
    // In play before the move; analysis does not wait for its end, which may not come.
    for (const std::string command : {"sd 2\ngo", "analyze"}) {
        SCOPED_TRACE(command);
        Session session;
        egtb::writeTableOf(session.directory.path.string(), "KQK", {egtb::codeOfPlies(3)});
        session.allAnswersTo("egtpath gaviota .");
        const std::string file = session.directory.file(std::string("KQK") + egtb::TableSuffix);
        std::filesystem::resize_file(file, std::filesystem::file_size(file) / 2);
        session.send("setboard 8/8/8/3k4/8/8/8/KQ6 w - -\n" + command);
        EXPECT_EQ(session.nextLine("# tablebases"),
                  "# tablebases: ignored: KQK.gtb.cp4 can no longer be read; make it again with "
                  "vatro-tbgen");
        command == "analyze" ? session.nextThought() : session.nextMove();
        for (const std::string& line : session.allAnswersTo("force")) {
            EXPECT_FALSE(line.starts_with("# tablebases")) << line;
        }
    }
}

TEST(TablebaseSession, OpeningTablesDoesNotHoldUpAMove) {
    Session session;
    std::filesystem::create_directory(session.directory.path / "m");
    for (int i = 0; i < 200; ++i) {
        session.directory.writeFile("m/" + std::to_string(i) + egtb::TableSuffix, "no table");
    }
    std::string paths;  // the directory over and over: a second's work
    for (int i = 0; i < 127; ++i) {
        paths += "m;";
    }
    session.send("nobook\ntime 5\ngo\negtpath gaviota " + paths);
    for (const std::string& line : session.linesBefore("move ")) {
        EXPECT_FALSE(line.starts_with("# tablebases: ignored")) << "the move came after " << line;
    }
    session.nextLine("# tablebases: ignored");
}

}  // namespace
}  // namespace vatro::test
