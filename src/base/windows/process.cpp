// base/windows/process.cpp - arguments, console events and limits by the calls of Windows.
#include "base/process.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <memory>

#include "base/windows/system.h"

namespace vatro {
namespace {

std::atomic<bool> isInterrupted{false};

/// Runs in a thread of its own.
BOOL WINAPI interrupt(DWORD event) {
    isInterrupted = true;
    // After these the process ends when the handler returns, and after five seconds in any case.
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) Sleep(INFINITE);
    return TRUE;
}

}  // namespace

std::vector<std::string> programArguments(int /*argc*/, char* /*argv*/[]) {
    // Those of main have lost what the system's old character set does not know.
    int count = 0;
    const std::unique_ptr<wchar_t*, HLOCAL (*)(HLOCAL)> words(
        CommandLineToArgvW(GetCommandLineW(), &count), &LocalFree);
    std::vector<std::string> arguments;
    for (int i = 1; words && i < count; ++i) {
        arguments.push_back(narrow(words.get()[i]));
    }
    return arguments;
}

const std::atomic<bool>& watchForInterrupt() {
    SetConsoleCtrlHandler(interrupt, TRUE);
    return isInterrupted;
}

std::uint64_t memoryLimit() {
    MEMORYSTATUSEX memory{};
    memory.dwLength = sizeof memory;
    if (!GlobalMemoryStatusEx(&memory)) return std::numeric_limits<std::uint64_t>::max();
    return std::min({memory.ullAvailPhys, memory.ullAvailPageFile, memory.ullAvailVirtual});
}

void useOneHeap() {}  // the C library has no other

int allowedProcessors() {
    DWORD_PTR ours = 0;
    DWORD_PTR all = 0;
    if (!GetProcessAffinityMask(GetCurrentProcess(), &ours, &all)) return 1;
    return std::max(1, std::popcount(static_cast<std::uint64_t>(ours)));
}

}  // namespace vatro
