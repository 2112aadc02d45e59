// tests/base/text_test.cpp - tokens, numbers and trimmed lines.
#include "base/text.h"

#include <gtest/gtest.h>

namespace vatro {
namespace {

using Tokens = std::vector<std::string>;

TEST(SplitTokens, KeepsEmptyTokensExceptAtTheEnd) {
    EXPECT_EQ(Tokens(), splitTokens("", ' '));
    EXPECT_EQ(Tokens({""}), splitTokens(" ", ' '));
    EXPECT_EQ(Tokens({"a"}), splitTokens("a", ':'));
    EXPECT_EQ(Tokens({"a", "", "b"}), splitTokens("a  b", ' '));
    EXPECT_EQ(Tokens({"", "30"}), splitTokens(":30", ':'));
    EXPECT_EQ(Tokens({"5"}), splitTokens("5:", ':'));
    EXPECT_EQ(Tokens({"n", "v w"}), splitTokens("n=v w", '='));
}

TEST(JoinTokens, PutsOneSeparatorBetweenTokens) {
    EXPECT_EQ("", joinTokens({}, ' '));
    EXPECT_EQ(" a  b", joinTokens({"", "a", "", "b"}, ' '));
}

TEST(ReadNumber, TakesTheLeadingInteger) {
    EXPECT_EQ(12, readNumber("12"));
    EXPECT_EQ(-7, readNumber(" \t-7:30"));
    EXPECT_EQ(5, readNumber("+5x"));
    EXPECT_EQ(0, readNumber(""));
    EXPECT_EQ(0, readNumber("- 5"));
    EXPECT_EQ(0, readNumber("x5"));
    EXPECT_EQ(INT32_MAX, readNumber("4294967297"));
    EXPECT_EQ(INT32_MIN, readNumber("-99999999999999999999999999"));
}

TEST(TrimLine, TakesOneLineEndAndAllBlanks) {
    EXPECT_EQ("go", trimLine("go  \r\n"));
    EXPECT_EQ("go\r", trimLine("go\r\r\n"));
    EXPECT_EQ(" go\t", trimLine(" go\t \n"));
    EXPECT_EQ("a", trimLine(std::string_view("a\0b\n", 4)));
    EXPECT_EQ("", trimLine("   "));
}

}  // namespace
}  // namespace vatro
