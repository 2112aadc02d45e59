// base/posix/become_program.cpp - replacing this process by another program.
#include "base/become_program.h"

#include <unistd.h>

namespace vatro {

void becomeProgram(const std::filesystem::path& program, char* const argv[]) {
    execv(program.c_str(), argv);
}

}  // namespace vatro
