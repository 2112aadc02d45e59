// launcher/main.cpp - starts the program that was compiled for this machine's processor.
//
// A package holds each program twice: for every x86-64 processor and for those with the
// instructions of x86-64-v2, which all have since about 2009. The slow one alone would cost a
// seventh of the speed. Neither has the instructions that pack bits: some processors that offer
// them are slow at them.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/become_program.h"
#include "base/program_folder.h"

namespace {

/// What the compiler may use for x86-64-v2 and that a program can ask for.
bool hasVersion2() {
    __builtin_cpu_init();
    return __builtin_cpu_supports("popcnt") && __builtin_cpu_supports("ssse3") &&
           __builtin_cpu_supports("sse4.1") && __builtin_cpu_supports("sse4.2");
}

}  // namespace

int main(int /*argc*/, char* argv[]) {
    const std::filesystem::path folder = vatro::programFolder() / VATRO_PROGRAMS;
    if (hasVersion2()) vatro::becomeProgram(folder / VATRO_PROGRAM_NAME "-x86-64-v2", argv);
    const std::filesystem::path slowest = folder / VATRO_PROGRAM_NAME "-x86-64";
    vatro::becomeProgram(slowest, argv);
    std::fprintf(stderr, "%s: cannot start %s: %s\n", VATRO_PROGRAM_NAME, slowest.string().c_str(),
                 std::strerror(errno));
    return EXIT_FAILURE;
}
