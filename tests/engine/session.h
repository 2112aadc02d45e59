// tests/engine/session.h - a conversation with the built engine.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/child_process.h"

namespace vatro::test {

using Lines = std::vector<std::string>;

/// A directory of its own, removed at the end.
class ScratchDirectory {
  public:
    ScratchDirectory();
    ~ScratchDirectory();
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    std::string file(const std::string& name) const { return (path / name).string(); }
    void writeFile(const std::string& name, std::string_view content) const;

    const std::filesystem::path path;
};

/// Small tables, which sanitizers need to be quick.
inline constexpr char smallTables[] = "ttHashSizeMB=4\npawnHashSizeMB=1\n";

/// The built engine, or what the environment names as VATRO_PROGRAM.
std::string engineProgram();

/// Runs the engine in a directory of its own, without book, with the given configuration file.
///
/// What does not come in time, or not before the engine's end, fails the test by itself: nobody has
/// to look whether an answer is there before looking what it says. So does an engine that crashes,
/// see ChildProcess.
class Session {
  public:
    enum class Client { Interface, UserOnPipe, UserAtTerminal };

    /// In protocol mode for an interface.
    explicit Session(const Lines& args = {},
                     std::string_view configuration = smallTables,
                     Client client = Client::Interface);

    void send(const std::string& line) { process.send(line + '\n'); }
    /// What the engine says between the line and the answer to a ping after it, without comments.
    Lines answersTo(const std::string& line);
    /// The same with comments, but without boards.
    Lines allAnswersTo(const std::string& line);
    /// The lines before the next one that begins so; that one is taken too, and copied to `found`.
    Lines linesBefore(std::string_view beginning, std::string* found = nullptr);
    /// The next line that begins so; an empty one after a failure.
    std::string nextLine(std::string_view beginning);
    /// The engine's next move, without "move ".
    std::string nextMove();
    /// The next line of the search's thinking.
    std::string nextThought();
    /// What it says unasked within 50 ms, in which a search that should not run would show itself:
    /// it begins by printing its time.
    Lines linesUnasked();
    /// The board that the engine shows after the line: eight rows, rank 8 first.
    std::string boardAfter(const std::string& line);
    /// Closes the input and waits for the end: the exit status.
    std::optional<int> exitStatus();

    ScratchDirectory directory;
    ChildProcess process;

  private:
    Lines exchange(const std::string& line);

    unsigned pings = 1000;         // numbers that no test uses
    bool hasFallenSilent = false;  // it has let us wait in vain: once is enough
};

}  // namespace vatro::test
