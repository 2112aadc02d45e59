// base/regular_file.h - opening a file that the user names, which may be anything. Names are in
// UTF-8 on every system.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

namespace vatro {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FileHandle = std::unique_ptr<std::FILE, CloseFile>;

/// Opens a file for reading, without changing its bytes. Null when that fails, and for anything
/// but a regular file: a pipe or a device may let its reader wait for ever, or never end. Does not
/// wait itself.
[[nodiscard]] FileHandle openRegularFile(const std::string& path);

/// Opens what has the name for writing bytes, after emptying it; a new file when nothing has it.
/// Null when that fails.
[[nodiscard]] FileHandle createFile(const std::string& path);

}  // namespace vatro
