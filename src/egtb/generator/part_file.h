// egtb/generator/part_file.h - a table file while its table is made.
//
// It has a temporary name and a lock. Whoever holds the lock makes the table, so that two programs
// in one directory share the work instead of doing it twice.
#pragma once

#include <cstdint>
#include <string>

#include "base/file.h"

namespace vatro::egtb {

class PartFile {
  public:
    explicit PartFile(const std::string& finalPath);
    /// Removes the file unless it has got its final name.
    ~PartFile();
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    /// False when something else than a plain file has its name. Touches nothing.
    bool isClaimable();
    /// Creates and locks the file, or takes over that of a program that was killed.
    File::Claim claim();
    /// Why the last call failed, with what to do about it.
    const std::string& fault() const { return text; }

    [[nodiscard]] bool write(std::uint64_t at, const std::uint8_t* bytes, std::size_t size);
    /// Syncs the file and gives it its final name.
    [[nodiscard]] bool putInPlace();

  private:
    bool fail(const std::string& why);
    bool failAsNotPlain();
    bool failBySystem();

    std::string finalName;
    std::string partName;
    std::string text;
    File file;
};

}  // namespace vatro::egtb
