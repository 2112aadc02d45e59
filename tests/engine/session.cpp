// tests/engine/session.cpp - asking the engine and sorting its answers.
#include "engine/session.h"

#include <algorithm>
#include <fstream>
#include <random>
#include <unistd.h>

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
    Lines all{VATRO_PROGRAM};
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

ScratchDirectory::ScratchDirectory() : path(freshDirectory()) {}

ScratchDirectory::~ScratchDirectory() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
}

void ScratchDirectory::writeFile(const std::string& name, std::string_view content) const {
    std::ofstream(path / name, std::ios::binary) << content;
}

Session::Session(const Lines& args, std::string_view configuration, bool asUser)
    : process(programAndArgs(args), withFile(directory, configuration, directory.path.string())) {
    if (!asUser) {
        send("xboard");
        allAnswersTo("");
    }
}

Lines Session::exchange(const std::string& line) {
    const std::string answer = "pong " + std::to_string(++pings);
    send(line + "\nping " + std::to_string(pings));
    Lines answers;
    while (const auto next = process.readLine(Patience)) {
        if (*next == answer) return answers;
        answers.push_back(*next);
    }
    answers.emplace_back("(no answer)");
    return answers;
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
    while (const auto line = process.readLine(Patience)) {
        if (line->starts_with(beginning)) return *line;
    }
    return {};
}

std::string Session::nextMove() {
    const std::string line = nextLine("move ");
    return line.empty() ? line : line.substr(5);
}

std::string Session::boardAfter(const std::string& line) {
    std::string rows;
    for (const std::string& answer : exchange(line)) {
        if (!isBoardLine(answer) || answer == "#") continue;
        if (std::count(rows.begin(), rows.end(), '\n') == 8) rows.clear();
        rows += answer.substr(2) + '\n';
    }
    return rows;
}

int Session::exitStatus() {
    process.closeInput();
    return process.waitForExit(Patience).value_or(-1000);
}

}  // namespace vatro::test
