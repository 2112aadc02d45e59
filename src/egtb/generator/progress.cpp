// egtb/generator/progress.cpp - the progress bar.
#include "egtb/generator/progress.h"

#include <cstdio>

#include "base/console.h"

namespace vatro::egtb {
namespace {

constexpr std::size_t BarWidth = 30;
constexpr std::chrono::milliseconds UpdateInterval{200};
constexpr double LeastEstimable = 0.01;  // before that, the time left is a mere guess

double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

Progress::Progress(double work) : isTerminal(outputIsTerminal()), totalWork(work) {}

double Progress::taskSeconds() const { return secondsSince(taskStart); }

void Progress::beginTask(const std::string& name, double work) {
    taskName = name;
    taskWork = work;
    taskStart = Clock::now();
    lastUpdate = taskStart - UpdateInterval;
    update("", 0);
}

void Progress::update(const char* step, double part) {
    if (!isTerminal || Clock::now() - lastUpdate < UpdateInterval) return;
    lastUpdate = Clock::now();
    const double done = (workDone + part * taskWork) / totalWork;
    const auto filled = static_cast<std::size_t>(done * BarWidth);
    const std::string bar = std::string(filled, '#') + std::string(BarWidth - filled, '.');
    std::printf("\r[%s] %3d%%  %s left  %s  %s\x1b[K", bar.c_str(), static_cast<int>(100 * done),
                timeLeft(done).c_str(), taskName.c_str(), step);
    std::fflush(stdout);
    hasBar = true;
}

std::string Progress::timeLeft(double done) const {
    if (done <= LeastEstimable) return "-:--:--";
    const int seconds = static_cast<int>(secondsSince(start) * (1 - done) / done);
    char text[32];
    std::snprintf(text, sizeof(text), "%d:%02d:%02d", seconds / 3600, seconds / 60 % 60,
                  seconds % 60);
    return text;
}

void Progress::clearBar() {
    if (hasBar) std::printf("\r\x1b[K");
    hasBar = false;
}

void Progress::endTaskWithText(const std::string& result) {
    clearBar();
    workDone += taskWork;
    std::printf("%-6s %s\n", taskName.c_str(), result.c_str());
    std::fflush(stdout);
}

void Progress::endTask(const std::string& result) {
    const double done = (workDone + taskWork) / totalWork;
    // On a terminal the bar says it.
    if (isTerminal || done >= 1) return endTaskWithText(result);
    char rest[64];
    std::snprintf(rest, sizeof(rest), "  (%.0f%% of all, %s left)", 100 * done,
                  timeLeft(done).c_str());
    endTaskWithText(result + rest);
}

}  // namespace vatro::egtb
