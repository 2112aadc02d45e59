// tests/engine/session.cpp - asking the engine and sorting its answers.
#include "engine/session.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <unistd.h>
#include <utility>

#include <gtest/gtest.h>

namespace vatro::test {
namespace {

namespace fs = std::filesystem;

fs::path freshDirectory() {
    std::string name = (fs::temp_directory_path() / "vatro-XXXXXX").string();
    if (!::mkdtemp(name.data())) throw std::runtime_error("no directory for the test");
    return name;
}

/// A rank of a board, or the line that closes it.
bool isBoardLine(const std::string& line) {
    return line == "#" || (line.size() == 10 && line.starts_with("# ") &&
                           line.find_first_not_of(".pnbrqkPNBRQK", 2) == std::string::npos);
}

Lines programAndArgs(const Lines& args) {
    Lines all{engineProgram()};
    all.insert(all.end(), args.begin(), args.end());
    return all;
}

const std::string& withFile(const ScratchDirectory& directory,
                            std::string_view configuration,
                            const std::string& path) {
    if (!configuration.empty()) directory.writeFile("vatro.ini", configuration);
    return path;
}

}  // namespace

std::string engineProgram() {
    const char* const given = std::getenv("VATRO_PROGRAM");
    return given ? given : VATRO_PROGRAM;
}

ScratchDirectory::ScratchDirectory() : path(freshDirectory()) {}

ScratchDirectory::~ScratchDirectory() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
}

void ScratchDirectory::writeFile(const std::string& name, std::string_view content) const {
    std::ofstream(path / name, std::ios::binary) << content;
}

Session::Session(const Lines& args, std::string_view configuration, Client client)
    : process(programAndArgs(args),
              withFile(directory, configuration, directory.path.string()),
              client == Client::UserAtTerminal ? ChildProcess::Input::Terminal
                                               : ChildProcess::Input::Pipe) {
    if (client == Client::Interface) {
        send("xboard");
        allAnswersTo("");
    }
}

Lines Session::linesBefore(std::string_view beginning, std::string* found) {
    Lines lines;
    const auto limit = hasFallenSilent ? ChildProcess::Duration(0) : ChildProcess::Patience;
    while (auto line = process.readLine(limit)) {
        if (line->starts_with(beginning)) {
            if (found) *found = *std::move(line);
            return lines;
        }
        lines.push_back(*std::move(line));
    }
    if (std::exchange(hasFallenSilent, true)) return lines;
    ADD_FAILURE() << "no line came that begins with \"" << beginning << "\"\n"
                  << process.lastLines();
    return lines;
}

Lines Session::exchange(const std::string& line) {
    const std::string number = std::to_string(++pings);
    send(line + "\nping " + number);
    return linesBefore("pong " + number);
}

Lines Session::allAnswersTo(const std::string& line) {
    Lines answers = exchange(line);
    std::erase_if(answers, isBoardLine);
    return answers;
}

Lines Session::answersTo(const std::string& line) {
    Lines answers = allAnswersTo(line);
    std::erase_if(answers, [](const std::string& text) {
        return text.starts_with('#') && !text.starts_with("# command ");
    });
    return answers;
}

std::string Session::nextLine(std::string_view beginning) {
    std::string line;
    linesBefore(beginning, &line);
    return line;
}

std::string Session::nextMove() {
    const std::string line = nextLine("move ");
    EXPECT_TRUE(line.empty() || line.size() == 9 || line.size() == 10) << line;
    return line.substr(std::min<std::size_t>(line.size(), 5));
}

std::string Session::nextThought() {
    for (;;) {
        std::string line = nextLine("");
        if (hasFallenSilent || (!line.empty() && std::isdigit(line.front()))) return line;
    }
}

Lines Session::linesUnasked() {
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::milliseconds(50);
    Lines lines;
    while (auto line = process.readLine(
               std::chrono::duration_cast<ChildProcess::Duration>(deadline - Clock::now()))) {
        lines.push_back(*std::move(line));
    }
    return lines;
}

std::string Session::boardAfter(const std::string& line) {
    constexpr std::size_t BoardSize = std::size_t{8} * 9;  // with line feeds
    std::string rows;
    for (const std::string& answer : exchange(line)) {
        if (!isBoardLine(answer) || answer == "#") continue;
        if (rows.size() == BoardSize) rows.clear();
        rows += answer.substr(2) + '\n';
    }
    EXPECT_EQ(BoardSize, rows.size()) << "no whole board after " << line;
    return rows;
}

std::optional<int> Session::exitStatus() {
    process.closeInput();
    return process.waitForExit();
}

}  // namespace vatro::test
