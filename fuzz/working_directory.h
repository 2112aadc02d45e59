// fuzz/working_directory.h - where a fuzzed command loop reads and writes its files.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace vatro {

/// A folder with a configuration of small tables, removed at the end. The fuzzer's own files are
/// elsewhere, so it is entered for each run.
class WorkingDirectory {
  public:
    explicit WorkingDirectory(const std::string& name)
        : path(std::filesystem::temp_directory_path() /
               ("vatro_" + name + "_fuzz_" + std::to_string(::getpid()))),
          before(std::filesystem::current_path()) {
        std::filesystem::create_directory(path);
        std::ofstream(path / "vatro.ini") << "ttHashSizeMB=1\npawnHashSizeMB=1\n";
    }
    ~WorkingDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    void enter() const { std::filesystem::current_path(path); }
    void leave() const { std::filesystem::current_path(before); }

  private:
    const std::filesystem::path path;
    const std::filesystem::path before;
};

}  // namespace vatro
