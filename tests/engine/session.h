// tests/engine/session.h - a conversation with the built engine.
#pragma once

#include <filesystem>
#include <string>
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

/// Runs the engine in a directory of its own, without book, with the given configuration file.
class Session {
  public:
    static constexpr ChildProcess::Duration Patience{30000};  // for a busy machine, sanitizers

    /// In protocol mode unless `asUser`.
    explicit Session(const Lines& args = {},
                     std::string_view configuration = smallTables,
                     bool asUser = false);

    void send(const std::string& line) { process.send(line + '\n'); }
    /// What the engine says between the line and the answer to a ping after it, without comments.
    Lines answersTo(const std::string& line);
    /// The same with comments, but without boards.
    Lines allAnswersTo(const std::string& line);
    /// The next line that begins so; an empty one when none comes.
    std::string nextLine(std::string_view beginning);
    /// The engine's next move, without "move ".
    std::string nextMove();
    /// The board that the engine shows after the line: eight rows, rank 8 first.
    std::string boardAfter(const std::string& line);
    /// Closes the input; the exit status when the engine ends in time, else -1000.
    int exitStatus();

    ScratchDirectory directory;
    ChildProcess process;

  private:
    Lines exchange(const std::string& line);

    unsigned pings = 1000;  // numbers that no test uses
};

}  // namespace vatro::test
