// base/posix/file.cpp - files by the calls of POSIX.
#include "base/file.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vatro {
namespace {

int descriptorOf(std::intptr_t handle) { return static_cast<int>(handle); }

/// The folder of a file, to be opened.
std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

bool isPlain(const struct stat& status) { return S_ISREG(status.st_mode) && status.st_nlink <= 1; }

}  // namespace

File File::openForReading(const std::string& path) {
    // Without O_NONBLOCK a pipe of this name would block the caller. It means nothing for a file.
    return File(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
}

File::Claim File::claim(const std::string& path) {
    for (;;) {
        // Neither a link nor a pipe of this name may lead elsewhere or block.
        File opened(
            ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0666));
        const int error = errno;
        struct stat byName {};
        if (::lstat(path.c_str(), &byName) == 0 && !isPlain(byName)) return Claim::NotPlain;
        errno = error;
        if (!opened.isOpen()) return Claim::Failed;
        const int descriptor = descriptorOf(opened.handle);
        const bool isLocked = ::flock(descriptor, LOCK_EX | LOCK_NB) == 0;
        if (!isLocked && errno == EWOULDBLOCK) return Claim::Taken;
        // Between opening and locking, the other process may have renamed or removed the file.
        struct stat byDescriptor {};
        if (::fstat(descriptor, &byDescriptor) != 0 || ::lstat(path.c_str(), &byName) != 0 ||
            byDescriptor.st_ino != byName.st_ino) {
            continue;
        }
        *this = std::move(opened);
        if (::ftruncate(descriptor, 0) != 0) return Claim::Failed;
        return isLocked ? Claim::Held : Claim::Unlocked;
    }
}

void File::close() {
    if (isOpen()) ::close(descriptorOf(std::exchange(handle, Closed)));
}

std::optional<std::uint64_t> File::size() const {
    struct stat status {};
    if (::fstat(descriptorOf(handle), &status) != 0 || !S_ISREG(status.st_mode)) return {};
    return static_cast<std::uint64_t>(status.st_size);
}

bool File::readAt(std::uint64_t at, void* to, std::size_t size) const {
    auto* bytes = static_cast<char*>(to);
    while (size > 0) {
        const ssize_t got = ::pread(descriptorOf(handle), bytes, size, static_cast<off_t>(at));
        if (got < 0 && errno == EINTR) continue;
        if (got == 0) errno = 0;
        if (got <= 0) return false;
        bytes += got;
        at += static_cast<std::uint64_t>(got);
        size -= static_cast<std::size_t>(got);
    }
    return true;
}

bool File::writeAt(std::uint64_t at, const void* from, std::size_t size) {
    const auto* bytes = static_cast<const char*>(from);
    while (size > 0) {
        const ssize_t put = ::pwrite(descriptorOf(handle), bytes, size, static_cast<off_t>(at));
        if (put < 0 && errno == EINTR) continue;
        if (put == 0) errno = ENOSPC;
        if (put <= 0) return false;
        bytes += put;
        at += static_cast<std::uint64_t>(put);
        size -= static_cast<std::size_t>(put);
    }
    return true;
}

bool File::sync() { return ::fsync(descriptorOf(handle)) == 0; }

bool renameFile(const std::string& from, const std::string& to) {
    if (::rename(from.c_str(), to.c_str()) != 0) return false;
    // The new name is on disk only after the folder is.
    const int folder = ::open(folderOf(to).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        ::fsync(folder);
        ::close(folder);
    }
    return true;
}

void removeFile(const std::string& path) { ::unlink(path.c_str()); }

bool listFolder(const std::string& path, std::vector<std::string>& names) {
    // Not std::filesystem's iterator, which ends the process where libstdc++ finds no memory.
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir(path.c_str()), &::closedir);
    if (!folder) return false;
    while (const dirent* const entry = ::readdir(folder.get())) {
        names.emplace_back(entry->d_name);
    }
    return true;
}

std::filesystem::path standardPath(std::string_view name) { return name; }

}  // namespace vatro
