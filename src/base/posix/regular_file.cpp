// base/posix/regular_file.cpp - opening without waiting, then looking at what has been opened.
#include "base/regular_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vatro {

FileHandle openRegularFile(const std::string& path) {
    // Without O_NONBLOCK a pipe would be waited for. It means nothing for a regular file.
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return nullptr;
    struct stat status {};
    const bool isRegular = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    FileHandle file(isRegular ? ::fdopen(descriptor, "rb") : nullptr);
    if (!file) ::close(descriptor);
    return file;
}

FileHandle createFile(const std::string& path) {
    return FileHandle(std::fopen(path.c_str(), "wb"));
}

}  // namespace vatro
