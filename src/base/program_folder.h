// base/program_folder.h - where the running program is installed.
#pragma once

#include <filesystem>

namespace vatro {

/// The folder of the running program's file, without symbolic links. Empty when the system does not
/// tell.
std::filesystem::path programFolder();

}  // namespace vatro
