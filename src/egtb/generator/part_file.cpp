// egtb/generator/part_file.cpp - creating, locking and renaming.
#include "egtb/generator/part_file.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vatro::egtb {

PartFile::PartFile(const std::string& finalPath)
    : finalName(finalPath), partName(finalPath + ".part") {}

PartFile::~PartFile() {
    if (descriptor < 0) return;
    unlink(partName.c_str());
    close(descriptor);
}

bool PartFile::fail(const std::string& why) {
    text = partName + ": " + why;
    return false;
}

PartFile::Claim PartFile::claim() {
    for (;;) {
        // Neither a link nor a pipe of this name may lead elsewhere or block.
        const int opened = ::open(partName.c_str(),
                                  O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0666);
        const int error = errno;
        struct stat byName {};
        const bool isNamed = lstat(partName.c_str(), &byName) == 0;
        if (isNamed && (!S_ISREG(byName.st_mode) || byName.st_nlink > 1)) {
            if (opened >= 0) close(opened);
            fail("is not a plain file; remove it");
            return Claim::Failed;
        }
        if (opened < 0) {
            fail(std::strerror(error));
            return Claim::Failed;
        }
        Claim result = Claim::Held;
        if (flock(opened, LOCK_EX | LOCK_NB) != 0) {
            result = errno == EWOULDBLOCK ? Claim::Taken : Claim::Unlocked;
        }
        if (result == Claim::Taken) {
            close(opened);
            return result;
        }
        // Between opening and locking, the other program may have renamed or removed the file.
        struct stat byDescriptor {};
        if (fstat(opened, &byDescriptor) != 0 || lstat(partName.c_str(), &byName) != 0 ||
            byDescriptor.st_ino != byName.st_ino) {
            close(opened);
            continue;
        }
        descriptor = opened;
        if (ftruncate(descriptor, 0) == 0) return result;
        fail(std::strerror(errno));
        return Claim::Failed;
    }
}

bool PartFile::write(std::uint64_t at, const std::uint8_t* bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t put = pwrite(descriptor, bytes, size, static_cast<off_t>(at));
        if (put < 0 && errno == EINTR) continue;
        if (put <= 0) return fail(std::strerror(put < 0 ? errno : ENOSPC));
        bytes += put;
        at += static_cast<std::uint64_t>(put);
        size -= static_cast<std::size_t>(put);
    }
    return true;
}

bool PartFile::putInPlace() {
    if (fsync(descriptor) != 0 || rename(partName.c_str(), finalName.c_str()) != 0) {
        return fail(std::strerror(errno));
    }
    close(descriptor);
    descriptor = -1;
    // The new name is on disk only after the directory is.
    const std::filesystem::path parent = std::filesystem::path(finalName).parent_path();
    const int opened =
        ::open(parent.empty() ? "." : parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (opened >= 0) {
        fsync(opened);
        close(opened);
    }
    return true;
}

}  // namespace vatro::egtb
