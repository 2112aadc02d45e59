// tests/engine/child_process.cpp - fork, pipes and waiting with a time limit.
#include "engine/child_process.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/wait.h>
#include <termios.h>
#include <thread>
#include <unistd.h>
#include <utility>

#include <gtest/gtest.h>

namespace vatro::test {
namespace {

constexpr std::size_t LoggedBytes = 2000;     // of the conversation
constexpr std::size_t LoggedLineBytes = 200;  // of what is sent at once

void openPipe(int (&ends)[2]) {
    // Closed on exec, so that another child does not keep this one's input open.
    if (::pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
}

/// The end that is typed at, and the one that the program reads, as of a pipe.
void openTerminal(int (&ends)[2]) {
    ends[1] = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (ends[1] < 0 || ::grantpt(ends[1]) != 0 || ::unlockpt(ends[1]) != 0) {
        throw std::runtime_error("no terminal");
    }
    ends[0] = ::open(::ptsname(ends[1]), O_RDWR | O_NOCTTY | O_CLOEXEC);  // NOLINT: one thread
    termios settings{};
    if (ends[0] < 0 || ::tcgetattr(ends[0], &settings) != 0) {
        throw std::runtime_error("no terminal");
    }
    settings.c_lflag &= ~static_cast<tcflag_t>(ECHO);  // nobody would read it
    ::tcsetattr(ends[0], TCSANOW, &settings);
}

void closeEnd(int& end) {
    if (end >= 0) ::close(std::exchange(end, -1));
}

/// A race ends the program at once: it may be killed or end in a way that asks for no report.
std::string threadSanitizerOptions() {
    const char* const given = std::getenv("TSAN_OPTIONS");
    return std::string("TSAN_OPTIONS=halt_on_error=1:exitcode=66:") + (given ? given : "");
}

std::string describe(int status) {
    if (status >= 0) return "exit status " + std::to_string(status);
    return "signal " + std::to_string(-status) + " (" + ::strsignal(-status) + ")";
}

}  // namespace

const ChildProcess::Duration ChildProcess::Patience = [] {
    const char* const given = std::getenv("VATRO_PATIENCE_MS");
    return Duration(given ? std::atoi(given) : 30000);
}();

ChildProcess::ChildProcess(const std::vector<std::string>& argv,
                           const std::string& directory,
                           Input inputKind) {
    std::signal(SIGPIPE, SIG_IGN);
    std::vector<char*> words;
    words.reserve(argv.size() + 1);
    for (const std::string& word : argv) {
        words.push_back(const_cast<char*>(word.c_str()));  // NOLINT: execv writes nothing
    }
    words.push_back(nullptr);
    std::string sanitizerOptions = threadSanitizerOptions();
    int toChild[2];
    int fromChild[2];
    inputKind == Input::Terminal ? openTerminal(toChild) : openPipe(toChild);
    openPipe(fromChild);
    process = ::fork();
    if (process < 0) throw std::runtime_error("no process");
    if (process == 0) {
        std::signal(SIGPIPE, SIG_DFL);
        ::putenv(sanitizerOptions.data());
        ::dup2(toChild[0], STDIN_FILENO);
        ::dup2(fromChild[1], STDOUT_FILENO);
        if (::chdir(directory.c_str()) == 0) ::execv(words[0], words.data());
        ::_exit(127);
    }
    ::close(toChild[0]);
    ::close(fromChild[1]);
    input = toChild[1];
    output = fromChild[0];
    ::fcntl(input, F_SETFL, O_NONBLOCK);
}

ChildProcess::~ChildProcess() {
    checkEnd();
    closeInput();
    closeOutput();
}

void ChildProcess::checkEnd() {
    const bool isOurs = status || input < 0;  // the test has caused the end
    const bool endedByItself = !isOurs && ((outputEnded && output >= 0) || hasEnded());
    if (!isOurs && !endedByItself) send("\nquit\n");
    if (!waitForExit(Patience)) {
        ADD_FAILURE() << "the program does not end and is killed\n" << lastLines();
        ::kill(process, SIGKILL);
        ::waitpid(process, nullptr, 0);
    } else if (endedByItself) {
        ADD_FAILURE() << "the program ended by itself: " << describe(*status) << '\n'
                      << lastLines();
    } else if (*status != expectedStatus) {
        ADD_FAILURE() << "the program ended with " << describe(*status) << ", expected "
                      << describe(expectedStatus) << '\n'
                      << lastLines();
    }
}

bool ChildProcess::send(std::string_view bytes) {
    note("> ");
    note(bytes.substr(0, LoggedLineBytes));
    const TimePoint deadline = TimePoint::clock::now() + Patience;
    while (!bytes.empty()) {
        const ssize_t count = ::write(input, bytes.data(), bytes.size());
        if (count > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
            continue;
        }
        if (errno != EAGAIN || TimePoint::clock::now() >= deadline) return false;
        // A program that waits for us to read does not read either.
        pollfd ends[] = {{input, POLLOUT, 0}, {outputEnded ? -1 : output, POLLIN, 0}};
        ::poll(ends, 2, static_cast<int>(Patience.count()));
        if (ends[1].revents != 0) readBlock();
    }
    return true;
}

void ChildProcess::closeInput() { closeEnd(input); }
void ChildProcess::closeOutput() {
    closeEnd(output);
    outputEnded = true;
}

void ChildProcess::readBlock() {
    char block[4096];
    const ssize_t count = ::read(output, block, sizeof block);
    outputEnded = count <= 0;
    if (outputEnded) return;
    const std::string_view bytes(block, static_cast<std::size_t>(count));
    pending += bytes;
    note(bytes);
}

bool ChildProcess::readMore(TimePoint deadline) {
    if (outputEnded) return false;
    const auto left = std::chrono::duration_cast<Duration>(deadline - TimePoint::clock::now());
    pollfd source{output, POLLIN, 0};
    if (::poll(&source, 1, static_cast<int>(std::max<long long>(left.count(), 0))) <= 0) {
        return false;
    }
    readBlock();
    return !outputEnded;
}

std::optional<std::string> ChildProcess::readLine(Duration limit) {
    const TimePoint deadline = TimePoint::clock::now() + limit;
    std::size_t end = 0;
    while ((end = pending.find('\n')) == std::string::npos) {
        if (!readMore(deadline)) return std::nullopt;
    }
    std::string line = pending.substr(0, end);
    pending.erase(0, end + 1);
    return line;
}

std::string ChildProcess::readUntil(std::string_view text, Duration limit) {
    const TimePoint deadline = TimePoint::clock::now() + limit;
    std::size_t start = 0;
    while ((start = pending.find(text)) == std::string::npos) {
        if (!readMore(deadline)) return std::exchange(pending, {});
    }
    std::string result = pending.substr(0, start + text.size());
    pending.erase(0, start + text.size());
    return result;
}

std::optional<std::string> ChildProcess::readAll(Duration limit) {
    const TimePoint deadline = TimePoint::clock::now() + limit;
    while (readMore(deadline)) {
    }
    if (!outputEnded) return std::nullopt;
    return std::exchange(pending, {});
}

bool ChildProcess::hasEnded() {
    int raw = 0;
    if (!status && ::waitpid(process, &raw, WNOHANG) == process) {
        status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -WTERMSIG(raw);
    }
    return status.has_value();
}

std::optional<int> ChildProcess::waitForExit(Duration limit) {
    const TimePoint deadline = TimePoint::clock::now() + limit;
    while (readMore(deadline)) {  // it may have more to say than a pipe holds
    }
    while (!hasEnded() && TimePoint::clock::now() < deadline) {
        std::this_thread::sleep_for(Duration(1));
    }
    return status;
}

void ChildProcess::note(std::string_view text) {
    log += text;
    if (log.size() > 2 * LoggedBytes) log.erase(0, log.size() - LoggedBytes);
}

std::string ChildProcess::lastLines() const {
    return "the conversation ended so:\n" +
           log.substr(log.size() - std::min(log.size(), LoggedBytes));
}

}  // namespace vatro::test
