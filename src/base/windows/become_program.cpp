// base/windows/become_program.cpp - a program in a process of its own, which this one waits for.
//
// Windows cannot replace the program of a process. Who ends the waiting process means the other.
#include "base/become_program.h"

#include <cstdlib>

#include "base/windows/system.h"

namespace vatro {
namespace {

/// Ctrl-C goes to both processes; the program may have something to finish.
BOOL WINAPI leaveToProgram(DWORD /*event*/) { return TRUE; }

/// The system ends what is in the job when the last handle of the job is closed.
HANDLE jobThatEndsWithUs() {
    const HANDLE job = CreateJobObjectW(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return job;
}

}  // namespace

void becomeProgram(const std::filesystem::path& program, char* const /*argv*/[]) {
    std::filesystem::path file = program;
    file += ".exe";
    std::wstring line = GetCommandLineW();  // passed on as it is: quotes are hard to put back
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(file.c_str(), line.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED,
                        nullptr, nullptr, &startup, &process)) {
        return setErrno(GetLastError());
    }
    SetConsoleCtrlHandler(leaveToProgram, TRUE);
    AssignProcessToJobObject(jobThatEndsWithUs(), process.hProcess);
    ResumeThread(process.hThread);
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD status = EXIT_FAILURE;
    GetExitCodeProcess(process.hProcess, &status);
    ExitProcess(status);
}

}  // namespace vatro
