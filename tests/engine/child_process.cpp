// tests/engine/child_process.cpp - fork, pipes and waiting with a time limit.
#include "engine/child_process.h"

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace vatro::test {
namespace {

void openPipe(int (&ends)[2]) {
    // Closed on exec, so that another child does not keep this one's input open.
    if (::pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
}

void closeEnd(int& end) {
    if (end >= 0) ::close(std::exchange(end, -1));
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& argv, const std::string& directory) {
    std::signal(SIGPIPE, SIG_IGN);
    std::vector<char*> words;
    words.reserve(argv.size() + 1);
    for (const std::string& word : argv) {
        words.push_back(const_cast<char*>(word.c_str()));  // NOLINT: execv writes nothing
    }
    words.push_back(nullptr);
    int toChild[2];
    int fromChild[2];
    openPipe(toChild);
    openPipe(fromChild);
    process = ::fork();
    if (process < 0) throw std::runtime_error("no process");
    if (process == 0) {
        std::signal(SIGPIPE, SIG_DFL);
        ::dup2(toChild[0], STDIN_FILENO);
        ::dup2(fromChild[1], STDOUT_FILENO);
        if (::chdir(directory.c_str()) == 0) ::execv(words[0], words.data());
        ::_exit(127);
    }
    ::close(toChild[0]);
    ::close(fromChild[1]);
    input = toChild[1];
    output = fromChild[0];
}

ChildProcess::~ChildProcess() {
    closeInput();
    closeOutput();
    if (process > 0) {
        ::kill(process, SIGKILL);
        ::waitpid(process, nullptr, 0);
    }
}

bool ChildProcess::send(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(input, bytes.data(), bytes.size());
        if (count < 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

void ChildProcess::closeInput() { closeEnd(input); }
void ChildProcess::closeOutput() { closeEnd(output); }

bool ChildProcess::readMore(TimePoint deadline) {
    if (ended) return false;
    const auto left = std::chrono::duration_cast<Duration>(deadline - TimePoint::clock::now());
    pollfd source{output, POLLIN, 0};
    if (::poll(&source, 1, static_cast<int>(std::max<long long>(left.count(), 0))) <= 0) {
        return false;
    }
    char block[4096];
    const ssize_t count = ::read(output, block, sizeof block);
    ended = count <= 0;
    if (!ended) pending.append(block, static_cast<std::size_t>(count));
    return !ended;
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
    if (!ended) return std::nullopt;
    return std::exchange(pending, {});
}

std::optional<int> ChildProcess::waitForExit(Duration limit) {
    const TimePoint deadline = TimePoint::clock::now() + limit;
    int status = 0;
    while (::waitpid(process, &status, WNOHANG) == 0) {
        if (TimePoint::clock::now() >= deadline) return std::nullopt;
        std::this_thread::sleep_for(Duration(2));
    }
    process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace vatro::test
