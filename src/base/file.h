// base/file.h - files by name and by position.
//
// Names are in UTF-8 on every system, and "/" separates folders on every system. A function that
// fails leaves the reason in errno on every system.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vatro {

/// An open file. The object closes it.
class File {
  public:
    File() = default;
    File(File&& other) noexcept : handle(std::exchange(other.handle, Closed)) {}
    File& operator=(File&& other) noexcept {
        std::swap(handle, other.handle);
        return *this;
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() { close(); }

    /// Opens what has the name, be it a file or not; does not wait for the other end of a pipe. The
    /// file may be replaced meanwhile: the object goes on reading the old one.
    [[nodiscard]] static File openForReading(const std::string& path);

    enum class Claim {
        Held,      // ours
        Unlocked,  // the same, but the file system gives no locks
        Taken,     // another process holds it
        NotPlain,  // something else than a file has the name, or the file has other names too
        Failed,    // see errno
    };
    /// Makes an empty file, or empties one, which no other process can claim until this one closes
    /// it or ends.
    [[nodiscard]] Claim claim(const std::string& path);

    bool isOpen() const { return handle != Closed; }
    void close();
    /// Bytes. Nothing for what is no regular file.
    std::optional<std::uint64_t> size() const;

    /// Reads `size` bytes from position `at`. False when that fails and, with errno 0, when the
    /// file ends before. Any number of threads at once.
    [[nodiscard]] bool readAt(std::uint64_t at, void* to, std::size_t size) const;
    [[nodiscard]] bool writeAt(std::uint64_t at, const void* from, std::size_t size);
    /// Waits until all that was written is on the disk.
    [[nodiscard]] bool sync();

  private:
    static constexpr std::intptr_t Closed = -1;  // what systems give for a file that does not open

    explicit File(std::intptr_t open) : handle(open) {}

    std::intptr_t handle = Closed;  // a descriptor, or a HANDLE of Windows
};

/// Gives a file another name and waits until the disk has it. A file that has the name already is
/// replaced, also while others read it.
[[nodiscard]] bool renameFile(const std::string& from, const std::string& to);
void removeFile(const std::string& path);

/// The names in a folder, in no order. False when it cannot be read.
[[nodiscard]] bool listFolder(const std::string& path, std::vector<std::string>& names);

/// The path of a file in a folder; an empty folder is the current one.
std::string pathIn(const std::string& folder, const std::string& name);
/// For the functions of the standard library. Never throws for want of a good name.
std::filesystem::path standardPath(std::string_view name);

}  // namespace vatro
