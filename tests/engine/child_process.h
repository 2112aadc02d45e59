// tests/engine/child_process.h - a program run as a chess interface runs it: through two pipes. Or
// by a user who types at a terminal.
//
// The test fails unless the program ends as it should, whatever else the test looks at.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace vatro::test {

class ChildProcess {
  public:
    using Duration = std::chrono::milliseconds;

    /// How long any answer may take: enough for a busy machine and sanitizers.
    static const Duration Patience;

    enum class Input { Pipe, Terminal };

    /// Starts argv[0] in the directory.
    ChildProcess(const std::vector<std::string>& argv,
                 const std::string& directory,
                 Input inputKind = Input::Pipe);
    /// Tells the program to quit, waits for its end and fails the test unless it ended only then
    /// and with the expected status. Kills it, which is a failure too, when it does not end.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// The test makes the program end with an exit status other than 0, or by a signal: minus its
    /// number.
    void expectEnd(int expected) { expectedStatus = expected; }

    /// What the program writes meanwhile is kept. False when it no longer reads.
    bool send(std::string_view bytes);
    void closeInput();
    void closeOutput();

    /// The next line without its line feed. Nothing at the end of output or when the time is up.
    std::optional<std::string> readLine(Duration limit = Patience);
    /// All output until the text has come; what has come so far when the time is up.
    std::string readUntil(std::string_view text, Duration limit = Patience);
    /// All output to its end; nothing when the time is up.
    std::optional<std::string> readAll(Duration limit = Patience);

    /// Waits for the end, which the test has caused: the exit status, or minus the signal that
    /// ended the program. Nothing when it still runs.
    std::optional<int> waitForExit(Duration limit = Patience);

    /// The last lines in both directions, for a failure's message.
    std::string lastLines() const;

  private:
    using TimePoint = std::chrono::steady_clock::time_point;

    bool readMore(TimePoint deadline);
    void readBlock();
    void note(std::string_view text);
    bool hasEnded();
    void checkEnd();

    pid_t process = -1;
    int input = -1;   // of the program
    int output = -1;  // of the program
    std::string pending;
    std::string log;  // the end of the conversation
    bool outputEnded = false;
    int expectedStatus = 0;
    std::optional<int> status;  // once it has ended
};

}  // namespace vatro::test
