// base/windows/regular_file.cpp - opening a file by a name in any characters.
#include "base/regular_file.h"

#include "base/windows/system.h"

namespace vatro {

FileHandle openRegularFile(const std::string& path) {
    const std::wstring name = wide(path);
    const DWORD attributes = GetFileAttributesW(name.c_str());
    constexpr DWORD NoFile = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE;
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & NoFile) != 0) return nullptr;
    return FileHandle(_wfopen(name.c_str(), L"rb"));
}

FileHandle createFile(const std::string& path) {
    return FileHandle(_wfopen(wide(path).c_str(), L"wb"));
}

}  // namespace vatro
