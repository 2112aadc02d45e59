// base/become_program.h - handing this process over to another program.
#pragma once

#include <filesystem>

namespace vatro {

/// Runs the program in place of this one, with the arguments of main. Returns only when it cannot
/// be started; errno says why.
void becomeProgram(const std::filesystem::path& program, char* const argv[]);

}  // namespace vatro
