// base/windows/file.cpp - files by the calls of Windows.
#include "base/file.h"

#include <algorithm>
#include <cerrno>

#include "base/windows/system.h"

namespace vatro {
namespace {

HANDLE handleOf(std::intptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

std::intptr_t open(const std::string& path, DWORD access, DWORD sharing, DWORD how, DWORD flags) {
    const HANDLE handle =
        CreateFileW(wide(path).c_str(), access, sharing, nullptr, how, flags, nullptr);
    if (handle == INVALID_HANDLE_VALUE) setErrno(GetLastError());
    return reinterpret_cast<std::intptr_t>(handle);
}

/// Where a read or a write begins.
OVERLAPPED position(std::uint64_t at) {
    OVERLAPPED position{};
    position.Offset = static_cast<DWORD>(at);
    position.OffsetHigh = static_cast<DWORD>(at >> 32);
    return position;
}

constexpr std::size_t MostAtOnce = std::size_t{1} << 30;  // bytes; a call takes a 32-bit count

bool move(const std::wstring& from, const std::wstring& to) {
    return MoveFileExW(from.c_str(), to.c_str(),
                       MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}

/// A file that is being deleted keeps its name until the last process has closed it.
bool isBeingDeleted(const std::string& path) {
    return GetFileAttributesW(wide(path).c_str()) == INVALID_FILE_ATTRIBUTES &&
           GetLastError() == ERROR_ACCESS_DENIED;
}

}  // namespace

File File::openForReading(const std::string& path) {
    // Shared in every way, so that an open table can be replaced.
    return File(open(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                     OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL));
}

File::Claim File::claim(const std::string& path) {
    // Writing is not shared: that is the lock. Deleting is, or the file could not be renamed while
    // the lock is held.
    File opened(open(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, OPEN_ALWAYS,
                     FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT));
    if (!opened.isOpen()) {
        const DWORD error = GetLastError();
        if (error == ERROR_SHARING_VIOLATION) return Claim::Taken;
        if (error == ERROR_ACCESS_DENIED && isBeingDeleted(path)) return Claim::Taken;
        const DWORD attributes = GetFileAttributesW(wide(path).c_str());
        setErrno(error);
        const bool isFolder =
            attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        return isFolder ? Claim::NotPlain : Claim::Failed;
    }
    BY_HANDLE_FILE_INFORMATION facts{};
    const HANDLE file = handleOf(opened.handle);
    if (GetFileType(file) != FILE_TYPE_DISK || !GetFileInformationByHandle(file, &facts) ||
        (facts.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 || facts.nNumberOfLinks > 1) {
        return Claim::NotPlain;
    }
    *this = std::move(opened);
    if (SetEndOfFile(file)) return Claim::Held;  // the position is that of a file just opened: 0
    setErrno(GetLastError());
    return Claim::Failed;
}

void File::close() {
    if (isOpen()) CloseHandle(handleOf(std::exchange(handle, Closed)));
}

std::optional<std::uint64_t> File::size() const {
    LARGE_INTEGER bytes{};
    if (GetFileType(handleOf(handle)) != FILE_TYPE_DISK ||
        !GetFileSizeEx(handleOf(handle), &bytes)) {
        return {};
    }
    return static_cast<std::uint64_t>(bytes.QuadPart);
}

bool File::readAt(std::uint64_t at, void* to, std::size_t size) const {
    auto* bytes = static_cast<char*>(to);
    while (size > 0) {
        OVERLAPPED from = position(at);
        DWORD got = 0;
        if (!ReadFile(handleOf(handle), bytes, static_cast<DWORD>(std::min(size, MostAtOnce)), &got,
                      &from) &&
            GetLastError() != ERROR_HANDLE_EOF) {
            setErrno(GetLastError());
            return false;
        }
        if (got == 0) {
            errno = 0;
            return false;
        }
        bytes += got;
        at += got;
        size -= got;
    }
    return true;
}

bool File::writeAt(std::uint64_t at, const void* from, std::size_t size) {
    const auto* bytes = static_cast<const char*>(from);
    while (size > 0) {
        OVERLAPPED to = position(at);
        DWORD put = 0;
        if (!WriteFile(handleOf(handle), bytes, static_cast<DWORD>(std::min(size, MostAtOnce)),
                       &put, &to)) {
            setErrno(GetLastError());
            return false;
        }
        bytes += put;
        at += put;
        size -= put;
    }
    return true;
}

bool File::sync() {
    if (FlushFileBuffers(handleOf(handle))) return true;
    setErrno(GetLastError());
    return false;
}

bool renameFile(const std::string& from, const std::string& to) {
    const std::wstring source = wide(from);
    const std::wstring target = wide(to);
    if (move(source, target)) return true;
    const DWORD error = GetLastError();
    if (error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION) {
        // A file that somebody reads cannot be replaced, but it can be renamed and deleted.
        const std::wstring old = target + L".old";
        if (move(target, old)) {
            if (move(source, target)) {
                DeleteFileW(old.c_str());
                return true;
            }
            move(old, target);
        }
    }
    setErrno(error);
    return false;
}

void removeFile(const std::string& path) { DeleteFileW(wide(path).c_str()); }

bool listFolder(const std::string& path, std::vector<std::string>& names) {
    WIN32_FIND_DATAW entry{};
    const HANDLE search = FindFirstFileW(wide(pathIn(path, "*")).c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE) {
        setErrno(GetLastError());
        return false;
    }
    do {
        names.push_back(narrow(entry.cFileName));
    } while (FindNextFileW(search, &entry));
    FindClose(search);
    return true;
}

std::filesystem::path standardPath(std::string_view name) { return wide(name); }

}  // namespace vatro
