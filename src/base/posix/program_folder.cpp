// base/posix/program_folder.cpp - asking the system for the program's file.
//
// The name in the arguments would not do: it may be relative, or found on the PATH.
#include "base/program_folder.h"

#include <system_error>

#if defined(__APPLE__)
#include <mach-o/dyld.h>
#elif defined(__linux__)
#include <sys/auxv.h>
#endif

namespace vatro {
namespace {

std::filesystem::path programFile() {
    std::error_code error;
#if defined(__APPLE__)
    char name[4096];
    std::uint32_t size = sizeof name;
    if (_NSGetExecutablePath(name, &size) != 0) return {};
    return std::filesystem::canonical(name, error);
#else
    std::filesystem::path file = std::filesystem::read_symlink("/proc/self/exe", error);
#if defined(__linux__)
    // In a bare root folder there may be no /proc; the kernel also tells what it was asked to
    // start.
    if (error) {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the interface of getauxval
        const auto* const name = reinterpret_cast<const char*>(getauxval(AT_EXECFN));
        if (name) file = std::filesystem::canonical(name, error);
    }
#endif
    return file;
#endif
}

}  // namespace

std::filesystem::path programFolder() { return programFile().parent_path(); }

}  // namespace vatro
