// egtb/generator/resources.cpp - reading the limits of the system, of control groups and the
// process.
#include "egtb/generator/resources.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <limits>
#include <optional>
#include <sstream>
#include <system_error>

#include "base/file.h"
#include "base/process.h"

namespace vatro::egtb {
namespace {

constexpr std::uint64_t Unlimited = std::numeric_limits<std::uint64_t>::max();

/// The number in a file of one number; nothing for "max" or no file.
std::optional<std::uint64_t> readNumber(const std::string& path) {
    std::ifstream file(path);
    std::uint64_t number = 0;
    if (file >> number) return number;
    return std::nullopt;
}

/// The number after a word in a file of such pairs.
std::uint64_t readNumberAfter(const std::string& path, const std::string& word) {
    std::ifstream file(path);
    std::string line;
    while (std::getline(file, line)) {
        std::istringstream text(line);
        std::string key;
        std::uint64_t number = 0;
        if (text >> key >> number && key == word) return number;
    }
    return 0;
}

std::uint64_t systemMemory(const std::string& root) {
    constexpr std::uint64_t BytesPerKB = 1024;
    const std::uint64_t free =
        readNumberAfter(root + "/proc/meminfo", "MemAvailable:") * BytesPerKB;
    return free > 0 ? free : Unlimited;
}

/// A version of control groups: where their folders are and what their files are called.
struct GroupFiles {
    const char* mount;
    const char* limit;
    const char* usage;
    const char* cache;  // key in memory.stat of what the system drops when memory is short
};
constexpr GroupFiles groupFilesV2{"/sys/fs/cgroup", "memory.max", "memory.current",
                                  "inactive_file"};
constexpr GroupFiles groupFilesV1{"/sys/fs/cgroup/memory", "memory.limit_in_bytes",
                                  "memory.usage_in_bytes", "total_inactive_file"};

/// What a group and all that hold it leave. Inside a container the folders that the kernel names
/// may be out of sight; the innermost that is in sight then bears the container's limit.
std::uint64_t memoryOfGroup(const std::string& root, const GroupFiles& files, std::string group) {
    std::uint64_t least = Unlimited;
    for (;;) {
        std::string folder = root;
        folder.append(files.mount).append(group).append("/");
        const auto limit = readNumber(folder + files.limit);
        const auto usage = readNumber(folder + files.usage);
        if (limit && usage) {
            const std::uint64_t cache = readNumberAfter(folder + "memory.stat", files.cache);
            const std::uint64_t used = *usage - std::min(*usage, cache);
            least = std::min(least, *limit - std::min(*limit, used));
        }
        if (group.empty()) return least;
        const std::size_t slash = group.rfind('/');
        group.resize(slash == std::string::npos ? 0 : slash);
    }
}

std::uint64_t controlGroupMemory(const std::string& root) {
    std::uint64_t least = Unlimited;
    std::ifstream file(root + "/proc/self/cgroup");
    std::string line;  // "0::/group" or, in version 1, "4:memory:/group"
    while (std::getline(file, line)) {
        const std::size_t first = line.find(':');
        const std::size_t second = line.find(':', first + 1);
        if (second == std::string::npos) continue;
        const std::string controllers = ',' + line.substr(first + 1, second - first - 1) + ',';
        std::string group = line.substr(second + 1);
        if (group == "/") group.clear();
        if (controllers == ",,") {
            least = std::min(least, memoryOfGroup(root, groupFilesV2, group));
        } else if (controllers.find(",memory,") != std::string::npos) {
            least = std::min(least, memoryOfGroup(root, groupFilesV1, group));
        }
    }
    return least;
}

/// Whole processors that the control group's quota amounts to; a large number without one.
int quotaProcessors() {
    std::ifstream file("/sys/fs/cgroup/cpu.max");  // "max 100000" or "200000 100000"
    double quota = 0;
    double period = 0;
    if (file >> quota >> period && period > 0) return std::max(1, static_cast<int>(quota / period));
    return std::numeric_limits<int>::max();
}

}  // namespace

std::uint64_t availableMemory(const std::string& root) {
    const std::uint64_t least =
        std::min({systemMemory(root), controlGroupMemory(root), memoryLimit()});
    return least == Unlimited ? 0 : least;
}

int usableProcessors() { return std::min(allowedProcessors(), quotaProcessors()); }

std::uint64_t freeDiskSpace(const std::string& directory) {
    std::error_code error;
    const std::filesystem::space_info space =
        std::filesystem::space(standardPath(directory), error);
    return error ? 0 : space.available;
}

}  // namespace vatro::egtb
