// egtb/generator/resources.h - what the machine, the container or the job leaves to the program.
#pragma once

#include <cstdint>
#include <string>

namespace vatro::egtb {

/// Bytes that the program can still allocate: the least of the system's free memory, the limits of
/// its control groups and those of the process. 0 when nothing is known. `root` replaces "/" in the
/// paths of the system's files.
std::uint64_t availableMemory(const std::string& root = "");

/// Processors that the process may use, at least 1: the least of its affinity and the quotas of its
/// control groups. `root` as above.
int usableProcessors(const std::string& root = "");

/// Bytes that can still be written to a directory; 0 when nothing is known.
std::uint64_t freeDiskSpace(const std::string& directory);

}  // namespace vatro::egtb
