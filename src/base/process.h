// base/process.h - what the system tells a program about itself, and asks of it.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace vatro {

/// The arguments of main without the program's name, in UTF-8.
std::vector<std::string> programArguments(int argc, char* argv[]);

/// From here on a request to end (Ctrl-C, a closed terminal, a shutdown) does not end the process
/// but sets the flag. What the caller of the program ignores stays ignored. A write beyond the
/// limit on the size of files fails like one to a full disk.
const std::atomic<bool>& watchForInterrupt();

/// Bytes that this process may still allocate, so far as the system has a call that tells; the
/// greatest number when it has no limit.
std::uint64_t memoryLimit();

/// Makes all threads allocate from one heap, where the C library would give each its own and
/// reserve far more addresses for it than it needs. Before any thread is started.
void useOneHeap();

/// Processors that the process may use, at least 1.
int allowedProcessors();

}  // namespace vatro
