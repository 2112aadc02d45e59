// tools/stop_check.h - ending a long run early.
#pragma once

#include <functional>
#include <utility>

namespace vatro {

/// What a run that may last for minutes asks every few milliseconds. One that has to stop keeps
/// what it has done so far and reports on that, after InterruptedLine.
class StopCheck {
  public:
    /// Lets every run come to its end.
    StopCheck() = default;
    /// Asks `question` whether to stop, until the answer is yes.
    explicit StopCheck(std::function<bool()> question) : isStopWanted(std::move(question)) {}

    bool mustStop() {
        if (!stopped && isStopWanted) stopped = isStopWanted();
        return stopped;
    }
    /// A run has been told to stop. Does not ask.
    bool hasStopped() const { return stopped; }

  private:
    std::function<bool()> isStopWanted;
    bool stopped = false;
};

inline constexpr char InterruptedLine[] = "# interrupted\n";

}  // namespace vatro
