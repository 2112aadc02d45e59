// egtb/generator/progress.h - shows the user how far the work has got.
#pragma once

#include <chrono>
#include <string>

namespace vatro::egtb {

/// A bar with the time left on a terminal; elsewhere a line for each task done. All lines go to
/// standard output.
class Progress {
  public:
    /// `totalWork` is the sum of the work of all tasks, in any unit.
    explicit Progress(double totalWork);

    void beginTask(const std::string& name, double work);
    /// `part` of the task is done, 0.0 to 1.0.
    void update(const char* step, double part);
    /// Ends the task and prints `result` after its name, without a terminal also how far the run
    /// is.
    void endTask(const std::string& result);
    /// The same for results of several lines.
    void endTaskWithText(const std::string& result);
    /// Removes the bar from the terminal, before a message is printed.
    void clearBar();
    double taskSeconds() const;

  private:
    using Clock = std::chrono::steady_clock;

    /// Of the whole run, of which the part `done` is done: hours, minutes, seconds.
    std::string timeLeft(double done) const;

    bool isTerminal;
    double totalWork;
    double workDone = 0;
    double taskWork = 0;
    std::string taskName;
    Clock::time_point start = Clock::now();
    Clock::time_point taskStart = start;
    Clock::time_point lastUpdate = start;
    bool hasBar = false;
};

}  // namespace vatro::egtb
