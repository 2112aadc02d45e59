// tests/engine/configuration_test.cpp - the configuration file and the command line.
#include "engine/configuration.h"

#include <gtest/gtest.h>

#include "engine/command_line.h"
#include "engine/settings.h"
#include "engine/winboard_reporter.h"

namespace vatro {
namespace {

struct Settings : testing::Test {
    /// Applies the text as a file; returns what that prints.
    std::string read(const std::string& text) {
        std::FILE* const file = std::tmpfile();
        std::fwrite(text.data(), 1, text.size(), file);
        std::rewind(file);
        testing::internal::CaptureStdout();
        readConfiguration(file, player);
        std::fclose(file);
        return testing::internal::GetCapturedStdout();
    }
    /// The same for program arguments.
    std::string apply(const std::vector<std::string>& args) {
        testing::internal::CaptureStdout();
        applyCommandLine(args, player);
        return testing::internal::GetCapturedStdout();
    }

    TimeControl timeControl;
    WinBoardReporter reporter;
    ChessPlayer player{timeControl, reporter, nullptr};
};

TEST_F(Settings, OfANewPlayerAreTheDefaults) {
    for (const Setting& setting : settings()) {
        EXPECT_EQ(setting.defaultValue, setting.value(player)) << setting.name;
    }
}

TEST_F(Settings, AreReadFromTheFile) {
    EXPECT_EQ("", read("# ttHashSizeMB = 1\n"
                       "   # pawnHashSizeMB = 1\r\n"
                       "  ttHashSizeMB   =   64 MB  \r\n"
                       "pawnHashSizeMB=\"16\"\n"
                       "gtbCacheSizeMB=0\n"
                       "gtbPath = \"C:\\my tables\" \n"
                       "bookFilePath = \"half\n"
                       "TTHashSizeMB = 5\n"
                       "no equals sign\n"
                       "unknown = 3\n"
                       "="));
    EXPECT_EQ(64U, player.ttHashSizeMB);
    EXPECT_EQ(16U, player.pawnHashSizeMB);
    EXPECT_EQ(0U, player.gtbCacheSizeMB);
    EXPECT_EQ("C:\\my tables", player.gtbPath);
    EXPECT_EQ("\"half", player.book.path());
}

TEST_F(Settings, KeepTheirValuesWhenANumberIsOutOfRange) {
    EXPECT_EQ(
        "# WARNING: ttHashSizeMB = 4096 out of range in ini file (min = 1, max = 2048)\n"
        "# WARNING: pawnHashSizeMB = -1 out of range in ini file (min = 1, max = 2048)\n"
        "# WARNING: gtbCacheSizeMB = -1 out of range in ini file (min = 0, max = 256)\n"
        "# WARNING: numberOfCores = none out of range in ini file (min = 1)\n"
        "# WARNING: ttHashSizeMB = 99999999999 out of range in ini file (min = 1, max = "
        "2048)\n",
        read("ttHashSizeMB=4096\npawnHashSizeMB=-1\ngtbCacheSizeMB=-1\nnumberOfCores=none\n"
             "ttHashSizeMB=99999999999\n"));
    EXPECT_EQ(256U, player.ttHashSizeMB);
    EXPECT_EQ(32U, player.pawnHashSizeMB);
    EXPECT_EQ(16U, player.gtbCacheSizeMB);
    EXPECT_EQ(1U, player.requestedCores);
}

TEST_F(Settings, BoundTheCoresByTheMachine) {
    player.maxCores = 8;
    EXPECT_EQ("# will now use 8 cores (requested=64, current=0, max=8)\n",
              read("numberOfCores = 64"));
    EXPECT_EQ("# will now use 3 cores (requested=3, current=0, max=8)\n", apply({"-cores", "3x"}));
    EXPECT_EQ(3U, player.requestedCores);
}

TEST_F(Settings, KeepPathsWithinTheirLength) {
    const std::string fits(255, 'p');
    EXPECT_EQ("", read("gtbPath=" + fits + "q\nbookFilePath=" + fits + '\n'));
    EXPECT_EQ(fits, player.gtbPath);
    EXPECT_EQ(fits, player.book.path());
    EXPECT_EQ("# WARNING: bookFilePath too long in ini file\n", read("bookFilePath=q" + fits));
    EXPECT_EQ(fits, player.book.path());
}

TEST_F(Settings, TakeALongLineInPieces) {
    std::string text(1023, 'x');
    text += "ttHashSizeMB=7\n";
    EXPECT_EQ("", read(text));
    EXPECT_EQ(7U, player.ttHashSizeMB);
}

TEST_F(Settings, MayFollowAByteOrderMarkAndStandBetweenTabs) {
    EXPECT_EQ("", read("\xEF\xBB\xBFttHashSizeMB\t=7\n\t \tpawnHashSizeMB \t =\t5\n"
                       "\xEF\xBB\xBFgtbCacheSizeMB=9\n"));
    EXPECT_EQ(7U, player.ttHashSizeMB);
    EXPECT_EQ(5U, player.pawnHashSizeMB);
    EXPECT_EQ(16U, player.gtbCacheSizeMB) << "the mark stands only at the beginning";
}

TEST_F(Settings, EndAfterAThousandLines) {
    std::string text;
    for (int i = 0; i < 999; ++i) {
        text += "#\n";
    }
    EXPECT_EQ("", read(text + "ttHashSizeMB=7\n"));
    EXPECT_EQ("# WARNING: ini file has more than 1000 lines, rest ignored\n",
              read(text + "ttHashSizeMB=8\nttHashSizeMB=9\n"));
    EXPECT_EQ(8U, player.ttHashSizeMB);
}

TEST_F(Settings, CommandLineComplainsAboutWhatItDoesNotKnow) {
    EXPECT_EQ(
        "# warning: found bad argument \"-4\" for command line option \"-cores\", must be a "
        "positive number\n"
        "# warning: found unknown command line option \"cores\"\n"
        "# warning: missing argument for command line option \"-cores\"\n",
        apply({"-cores", "-4", "cores", "-cores"}));
    EXPECT_EQ(1U, player.requestedCores);
}

}  // namespace
}  // namespace vatro
