// tests/engine/help_test.cpp - the list of commands fits on a terminal.
#include "engine/help.h"

#include <gtest/gtest.h>

#include "base/text.h"
#include "engine/command_table.h"

namespace vatro {
namespace {

TEST(Help, ListsEveryCommandOnOneScreen) {
    const std::string text = helpText();
    const std::vector<std::string> lines = splitTokens(text, '\n');
    EXPECT_LE(lines.size(), 23U);  // and the prompt
    for (const std::string& line : lines) {
        EXPECT_LE(line.size(), 79U) << line;
        EXPECT_TRUE(line.starts_with("# "));
    }
    for (const CommandEntry& entry : WBEngine::commands()) {
        EXPECT_NE(text.find(formatted("%-10s %s", entry.name.data(), entry.summary)),
                  std::string::npos)
            << entry.name;
    }
}

}  // namespace
}  // namespace vatro
