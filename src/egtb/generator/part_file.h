// egtb/generator/part_file.h - a table file while its table is made.
//
// It has a temporary name and a lock. Whoever holds the lock makes the table, so that two programs
// in one directory share the work instead of doing it twice.
#pragma once

#include <cstdint>
#include <string>

namespace vatro::egtb {

class PartFile {
  public:
    explicit PartFile(const std::string& finalPath);
    /// Removes the file unless it has got its final name.
    ~PartFile();
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    enum class Claim {
        Held,      // the table is ours to make
        Unlocked,  // the same, but the file system gives no locks
        Taken,     // another process is making it
        Failed,    // see `fault`
    };
    /// Creates and locks the file, or takes over that of a program that was killed.
    Claim claim();
    /// Why the last call failed, with what to do about it.
    const std::string& fault() const { return text; }

    [[nodiscard]] bool write(std::uint64_t at, const std::uint8_t* bytes, std::size_t size);
    /// Syncs the file and gives it its final name.
    [[nodiscard]] bool putInPlace();

  private:
    bool fail(const std::string& why);

    std::string finalName;
    std::string partName;
    std::string text;
    int descriptor = -1;
};

}  // namespace vatro::egtb
