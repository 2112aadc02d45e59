// tests/tools/self_test_test.cpp - the self-test as a whole: some 790 million leaves.
#include "tools/self_test.h"

#include "support.h"

namespace vatro {
namespace {

TEST(SelfTest, WhatIsStoppedIsNoRow) {
    const auto board = std::make_unique<Board_0x88>();
    PerftHashTable table(1);
    int questions = 0;
    StopCheck stop([&questions] { return ++questions > 1; });  // the third row asks once
    testing::internal::CaptureStdout();
    ASSERT_TRUE(runSelfTest(*board, table, stop));
    const std::string output = testing::internal::GetCapturedStdout();
    EXPECT_NE(output.find("# Self-test no. 3 passed"), std::string::npos) << output;
    EXPECT_NE(
        output.find("\n# interrupted\n3 tests passed, 0 tests failed, 0 tests skipped, total 3"),
        std::string::npos)
        << output;
}

TEST(SelfTestInFull, PassesEveryRow) {
    const auto board = std::make_unique<Board_0x88>();
    PerftHashTable table;
    StopCheck never;
    testing::internal::CaptureStdout();
    ASSERT_TRUE(runSelfTest(*board, table, never));
    const std::string output = testing::internal::GetCapturedStdout();
    EXPECT_EQ(output.rfind("# new size of Perft hash: 64 MB\n", 0), 0U) << "and only once";
    EXPECT_EQ(output.find("new size", 10), std::string::npos);
    EXPECT_NE(output.find("\n# Self-test no. 19 passed: n=178633661, t="), std::string::npos)
        << output;
    EXPECT_NE(
        output.find("\n18 tests passed, 0 tests failed, 0 tests skipped, total 18 tests run:\n"
                    "n=11215513, t="),
        std::string::npos)
        << output;
}

}  // namespace
}  // namespace vatro
