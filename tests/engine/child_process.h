// tests/engine/child_process.h - a program run as a chess interface runs it: through two pipes.
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

    /// Starts argv[0] in the directory.
    ChildProcess(const std::vector<std::string>& argv, const std::string& directory);
    /// Kills the program if it still runs.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// False when the program no longer reads.
    bool send(std::string_view bytes);
    void closeInput();
    void closeOutput();

    /// The next line without its line feed. Nothing at the end of output or when the time is up.
    std::optional<std::string> readLine(Duration limit);
    /// All output until the text has come; what has come so far when the time is up.
    std::string readUntil(std::string_view text, Duration limit);
    /// All output to its end; nothing when the time is up.
    std::optional<std::string> readAll(Duration limit);

    /// The exit status, or minus the signal that ended the program. Nothing when it still runs.
    std::optional<int> waitForExit(Duration limit);

  private:
    using TimePoint = std::chrono::steady_clock::time_point;

    bool readMore(TimePoint deadline);

    pid_t process = -1;
    int input = -1;   // of the program
    int output = -1;  // of the program
    std::string pending;
    bool ended = false;
};

}  // namespace vatro::test
