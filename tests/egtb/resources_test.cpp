// tests/egtb/resources_test.cpp - the limits of containers and jobs.
#include "egtb/generator/resources.h"

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "test_tables.h"

namespace vatro::egtb {
namespace {

constexpr std::uint64_t Megabyte = 1 << 20;

/// A folder that stands for "/", with files of the kernel.
class FakeSystem {
  public:
    FakeSystem() { write("/proc/meminfo", "MemTotal: 9 kB\nMemAvailable:    1024000 kB\n"); }

    void write(const std::string& path, const std::string& text) {
        const std::filesystem::path file = directory.path() + path;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file) << text;
    }
    std::uint64_t availableMB() const { return availableMemory(directory.path()) / Megabyte; }
    int processors() const { return usableProcessors(directory.path()); }

  private:
    TemporaryDirectory directory;
};

TEST(Resources, MemoryOfTheSystemIsTheLimitWithoutOthers) {
    FakeSystem system;
    EXPECT_EQ(system.availableMB(), 1000U);
    system.write("/proc/self/cgroup", "0::/\n");
    EXPECT_EQ(system.availableMB(), 1000U);
}

TEST(Resources, EachControlGroupAboveLimitsTheMemory) {
    FakeSystem system;
    system.write("/proc/self/cgroup", "0::/jobs/7/task\n");
    system.write("/sys/fs/cgroup/jobs/7/task/memory.max", "max\n");
    system.write("/sys/fs/cgroup/jobs/7/task/memory.current", "1\n");
    system.write("/sys/fs/cgroup/jobs/memory.max", std::to_string(300 * Megabyte));
    system.write("/sys/fs/cgroup/jobs/memory.current", std::to_string(120 * Megabyte));
    EXPECT_EQ(system.availableMB(), 180U);
    // What is only cached can be had.
    system.write("/sys/fs/cgroup/jobs/memory.stat",
                 "anon 1\ninactive_file " + std::to_string(20 * Megabyte) + "\n");
    EXPECT_EQ(system.availableMB(), 200U);
}

TEST(Resources, ContainersThatSeeOnlyTheirOwnGroupAreLimited) {
    FakeSystem system;
    system.write("/proc/self/cgroup", "4:cpu,memory:/docker/abc\n1:name=systemd:/docker/abc\n");
    system.write("/sys/fs/cgroup/memory/memory.limit_in_bytes", std::to_string(500 * Megabyte));
    system.write("/sys/fs/cgroup/memory/memory.usage_in_bytes", std::to_string(600 * Megabyte));
    system.write("/sys/fs/cgroup/memory/memory.stat",
                 "total_inactive_file " + std::to_string(150 * Megabyte) + "\n");
    EXPECT_EQ(system.availableMB(), 50U);
}

TEST(Resources, QuotasOfControlGroupsLimitTheProcessors) {
    const int allowed = FakeSystem().processors();
    if (allowed < 2) GTEST_SKIP() << "one processor";
    FakeSystem system;
    system.write("/proc/self/cgroup", "3:cpu,cpuacct:/jobs/7\n0::/user/job\n");
    // No quota, and one of more processors than the machine has.
    system.write("/sys/fs/cgroup/user/job/cpu.max", "max 100000\n");
    system.write("/sys/fs/cgroup/cpu/jobs/7/cpu.cfs_quota_us", "-1\n");
    system.write("/sys/fs/cgroup/cpu/jobs/7/cpu.cfs_period_us", "100000\n");
    system.write("/sys/fs/cgroup/cpu/jobs/cpu.cfs_quota_us", "900000000\n");
    system.write("/sys/fs/cgroup/cpu/jobs/cpu.cfs_period_us", "100000\n");
    EXPECT_EQ(system.processors(), allowed);
    system.write("/sys/fs/cgroup/user/cpu.max", "190000 100000\n");
    EXPECT_EQ(system.processors(), 1);
    system.write("/sys/fs/cgroup/user/cpu.max", "max 100000\n");
    system.write("/sys/fs/cgroup/cpu/jobs/cpu.cfs_quota_us", "50000\n");
    EXPECT_EQ(system.processors(), 1) << "of half a processor";
}

}  // namespace
}  // namespace vatro::egtb
