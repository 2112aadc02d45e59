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
#include <vector>

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

/// The folder of a control group.
struct GroupFolder {
    int version;       // of control groups, 1 or 2
    std::string path;  // ends in '/'
};

/// The folders of the groups that the process belongs to and of all above them, as far as they
/// control `resource`. Inside a container the folders that the kernel names may be out of sight;
/// the innermost that is in sight then bears the container's limit.
std::vector<GroupFolder> groupFolders(const std::string& root, const std::string& resource) {
    std::vector<GroupFolder> folders;
    std::ifstream file(root + "/proc/self/cgroup");
    std::string line;  // "0::/group" or, in version 1, "4:memory:/group"
    while (std::getline(file, line)) {
        const std::size_t first = line.find(':');
        const std::size_t second = line.find(':', first + 1);
        if (second == std::string::npos) continue;
        const std::string controllers = ',' + line.substr(first + 1, second - first - 1) + ',';
        const int version = controllers == ",," ? 2 : 1;
        if (version == 1 && controllers.find(',' + resource + ',') == std::string::npos) continue;
        const std::string mount = root + "/sys/fs/cgroup" + (version == 1 ? '/' + resource : "");
        std::string group = line.substr(second + 1);
        if (group == "/") group.clear();
        for (;;) {
            folders.push_back({version, mount + group + '/'});
            if (group.empty()) break;
            const std::size_t slash = group.rfind('/');
            group.resize(slash == std::string::npos ? 0 : slash);
        }
    }
    return folders;
}

/// Bytes that a group leaves.
std::uint64_t memoryOfGroup(const GroupFolder& group) {
    const bool isV2 = group.version == 2;
    const auto limit = readNumber(group.path + (isV2 ? "memory.max" : "memory.limit_in_bytes"));
    const auto usage = readNumber(group.path + (isV2 ? "memory.current" : "memory.usage_in_bytes"));
    if (!limit || !usage) return Unlimited;
    // What is only cached the system drops when memory is short.
    const std::uint64_t cache =
        readNumberAfter(group.path + "memory.stat", isV2 ? "inactive_file" : "total_inactive_file");
    const std::uint64_t used = *usage - std::min(*usage, cache);
    return *limit - std::min(*limit, used);
}

std::uint64_t controlGroupMemory(const std::string& root) {
    std::uint64_t least = Unlimited;
    for (const GroupFolder& group : groupFolders(root, "memory")) {
        least = std::min(least, memoryOfGroup(group));
    }
    return least;
}

/// Whole processors that the quota of a group amounts to, at least 1; a large number without one.
int processorsOfGroup(const GroupFolder& group) {
    double quota = 0;
    double period = 0;
    if (group.version == 2) {
        std::ifstream(group.path + "cpu.max") >> quota >> period;  // "max 100000": both stay 0
    } else {
        std::ifstream(group.path + "cpu.cfs_quota_us") >> quota;  // -1 for none
        std::ifstream(group.path + "cpu.cfs_period_us") >> period;
    }
    if (quota <= 0 || period <= 0) return std::numeric_limits<int>::max();
    return std::max(1, static_cast<int>(quota / period));
}

}  // namespace

std::uint64_t availableMemory(const std::string& root) {
    const std::uint64_t least =
        std::min({systemMemory(root), controlGroupMemory(root), memoryLimit()});
    return least == Unlimited ? 0 : least;
}

int usableProcessors(const std::string& root) {
    int least = allowedProcessors();
    for (const GroupFolder& group : groupFolders(root, "cpu")) {
        least = std::min(least, processorsOfGroup(group));
    }
    return least;
}

std::uint64_t freeDiskSpace(const std::string& directory) {
    std::error_code error;
    const std::filesystem::space_info space =
        std::filesystem::space(standardPath(directory), error);
    return error ? 0 : space.available;
}

}  // namespace vatro::egtb
