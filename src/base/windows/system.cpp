// base/windows/system.cpp - converting names and errors.
#include "base/windows/system.h"

#include <cerrno>

namespace vatro {

std::wstring wide(std::string_view text) {
    const int size = static_cast<int>(text.size());
    std::wstring result(MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), size, result.data(),
                        static_cast<int>(result.size()));
    return result;
}

std::string narrow(std::wstring_view text) {
    const int size = static_cast<int>(text.size());
    const auto convert = [&](char* to, int room) {
        return WideCharToMultiByte(CP_UTF8, 0, text.data(), size, to, room, nullptr, nullptr);
    };
    std::string result(convert(nullptr, 0), '\0');
    convert(result.data(), static_cast<int>(result.size()));
    return result;
}

void setErrno(DWORD error) {
    switch (error) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_INVALID_NAME:
        case ERROR_BAD_PATHNAME:
            errno = ENOENT;
            return;
        case ERROR_ACCESS_DENIED:
        case ERROR_SHARING_VIOLATION:
            errno = EACCES;
            return;
        case ERROR_TOO_MANY_OPEN_FILES:
            errno = EMFILE;
            return;
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            errno = ENOSPC;
            return;
        case ERROR_NOT_ENOUGH_MEMORY:
            errno = ENOMEM;
            return;
        default:
            errno = EIO;
    }
}

}  // namespace vatro
