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
#include <filesystem>
#include <string>

#ifdef _WIN32
#include <windows.h>
// After windows.h, which it needs.
#include <process.h>
#include <shellapi.h>
#else
#include <unistd.h>
#endif

#include "base/program_folder.h"

namespace {

/// What the compiler may use for x86-64-v2 and that a program can ask for.
bool hasVersion2() {
    __builtin_cpu_init();
    return __builtin_cpu_supports("popcnt") && __builtin_cpu_supports("ssse3") &&
           __builtin_cpu_supports("sse4.1") && __builtin_cpu_supports("sse4.2");
}

/// Becomes the program for a processor; returns only when that fails.
void start(const std::filesystem::path& folder,
           const char* processor,
           [[maybe_unused]] char* const argv[]) {
    std::string name = std::string(VATRO_PROGRAM_NAME) + '-' + processor;
#ifdef _WIN32
    // There is no exec: this process waits for the program and passes on how it ended. The
    // arguments are put together with blanks, so the first must have none.
    name += ".exe";
    int count = 0;
    wchar_t** const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    wchar_t program[] = L"vatro";
    if (!arguments) return;
    arguments[0] = program;
    const auto result = _wspawnv(_P_WAIT, (folder / name).c_str(), arguments);
    if (result != -1) std::exit(static_cast<int>(result));
#else
    execv((folder / name).c_str(), argv);
#endif
}

}  // namespace

int main(int /*argc*/, char* argv[]) {
    const std::filesystem::path folder = vatro::programFolder() / VATRO_PROGRAMS;
    if (hasVersion2()) start(folder, "x86-64-v2", argv);
    start(folder, "x86-64", argv);
    std::fprintf(stderr, "%s: cannot start %s: %s\n", VATRO_PROGRAM_NAME,
                 (folder / VATRO_PROGRAM_NAME "-x86-64").string().c_str(), std::strerror(errno));
    return EXIT_FAILURE;
}
