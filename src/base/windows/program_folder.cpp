// base/windows/program_folder.cpp - asking the system for the program's file.
#include "base/program_folder.h"

#include <iterator>

#include "base/windows/system.h"

namespace vatro {

std::filesystem::path programFolder() {
    wchar_t name[32768];  // characters; the longest path that Windows knows
    const DWORD length = GetModuleFileNameW(nullptr, name, static_cast<DWORD>(std::size(name)));
    return std::filesystem::path(name, name + length).parent_path();
}

}  // namespace vatro
