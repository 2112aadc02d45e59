// tests/engine/session_test.cpp - no engine that crashes gets through a test unseen.
#include "engine/session.h"

#include <cstdlib>
#include <cstring>

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

namespace vatro::test {
namespace {

/// The environment of the engines that a test starts.
class Environment {
  public:
    Environment(const char* variable, const char* value) : name(variable) {
        ::setenv(name, value, 1);
    }
    ~Environment() { ::unsetenv(name); }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

  private:
    const char* const name;
};

/// Runs a shell script in the place of the engine and ends it as every test does.
void runToItsEnd(const char* script) {
    ChildProcess process({"/bin/sh", "-c", script}, "/tmp");
    process.readUntil("ready");
}

TEST(ChildProcess, FailsTheTestUnlessItEndsAsItShould) {
    runToItsEnd("echo ready; read line; exit 0");
    EXPECT_NONFATAL_FAILURE(runToItsEnd("echo ready; kill -TERM $$"), "signal 15");
    EXPECT_NONFATAL_FAILURE(runToItsEnd("echo ready; read line; kill -TERM $$"), "signal 15");
    EXPECT_NONFATAL_FAILURE(runToItsEnd("echo ready; read line; exit 66"), "exit status 66");
    EXPECT_NONFATAL_FAILURE(
        {
            ChildProcess process({"/bin/sh", "-c", "exit 0"}, "/tmp");
            process.readAll();
        },
        "ended by itself");
    EXPECT_NONFATAL_FAILURE(
        {
            ChildProcess process({"/bin/sh", "-c", "kill -TERM $$"}, "/tmp");
            process.expectEnd(-SIGKILL);
        },
        "signal 15");
}

TEST(Session, WithAnEngineThatDiesFailsWhateverTheTestLooksFor) {
    const Environment engine("VATRO_ENGINE", VATRO_PROGRAM);
    const Environment program("VATRO_PROGRAM", VATRO_DYING_ENGINE);
    const Environment word("VATRO_COMMAND", "eval");
    Session().answersTo("level 0 1 0");
    EXPECT_NONFATAL_FAILURE(Session().send("eval"), "signal 9");
    testing::TestPartResultArray failures;
    {
        const testing::ScopedFakeTestPartResultReporter reporter(
            testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &failures);
        Session().answersTo("eval");
    }
    ASSERT_EQ(2, failures.size());  // no answer, and the end
    EXPECT_NE(nullptr, std::strstr(failures.GetTestPartResult(0).message(), "no line came"));
}

}  // namespace
}  // namespace vatro::test
