#include "platform/os/linux/control_group.h"

#include <gtest/gtest.h>

#include <fstream>

#include "support/folder.h"

namespace qmp::os {
namespace {

constexpr std::uint64_t unlimited = ~std::uint64_t{0};

class ControlGroupTest : public testing::Test {
  protected:
    void belongs_to(const std::string& lines) { std::ofstream(folder_.native("membership")) << lines; }
    // A file of a group, by its path below the mount.
    void set(const std::string& path, const std::string& content) {
        const std::filesystem::path file = folder_.native("mount/" + path);
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file) << content << "\n";
    }
    std::uint64_t processors() const { return control_group_processors(files()); }
    std::uint64_t memory() const { return control_group_memory_left(files()); }
    ControlGroupFiles files() const { return {folder_.path("membership"), folder_.path("mount")}; }

    kelvara_test::TemporaryFolder folder_;
};

TEST_F(ControlGroupTest, WithoutGroupsNothingIsLimited) {
    EXPECT_EQ(processors(), unlimited);
    EXPECT_EQ(memory(), unlimited);
    belongs_to("0::/\n");
    EXPECT_EQ(processors(), unlimited);
}

TEST_F(ControlGroupTest, AQuotaCountsStartedProcessors) {
    belongs_to("0::/pod\n");
    for (const auto& [content, count] : {std::pair{"max 100000", unlimited},
                                         {"400000 100000", std::uint64_t{4}},
                                         {"250000 100000", std::uint64_t{3}},
                                         {"100001 100000", std::uint64_t{2}},
                                         {"100000 100000", std::uint64_t{1}},
                                         {"1000 100000", std::uint64_t{1}},
                                         {"garbage", unlimited},
                                         {"", unlimited},
                                         {"100000", unlimited},
                                         {"100000 0", unlimited},
                                         {"0 100000", unlimited},
                                         {"-1 100000", unlimited}}) {
        set("pod/cpu.max", content);
        EXPECT_EQ(processors(), count) << content;
    }
}

TEST_F(ControlGroupTest, TheLeastQuotaOfTheHierarchyBinds) {
    belongs_to("0::/slice/pod/container\n");
    set("cpu.max", "max 100000");
    set("slice/cpu.max", "800000 100000");
    set("slice/pod/cpu.max", "150000 50000");
    set("slice/pod/container/cpu.max", "max 100000");
    EXPECT_EQ(processors(), 3u);
    set("cpu.max", "200000 100000");
    EXPECT_EQ(processors(), 2u);
}

TEST_F(ControlGroupTest, TheFirstVersionHasFilesOfItsOwn) {
    belongs_to("12:memory:/docker/abc\n4:cpu,cpuacct:/docker/abc\n1:cpuset:/\n");
    set("cpu,cpuacct/docker/abc/cpu.cfs_quota_us", "-1");
    set("cpu,cpuacct/docker/abc/cpu.cfs_period_us", "100000");
    EXPECT_EQ(processors(), unlimited);
    set("cpu,cpuacct/docker/abc/cpu.cfs_quota_us", "350000");
    EXPECT_EQ(processors(), 4u);
    // Inside the container its own group is the root.
    set("cpu/cpu.cfs_quota_us", "150000");
    set("cpu/cpu.cfs_period_us", "100000");
    EXPECT_EQ(processors(), 2u);
}

TEST_F(ControlGroupTest, AnotherControllersLimitIsNone) {
    belongs_to("4:cpuset:/a\n5:cpuacct:/a\n");
    set("cpu/a/cpu.cfs_quota_us", "100000");
    set("cpu/a/cpu.cfs_period_us", "100000");
    EXPECT_EQ(processors(), unlimited);
}

TEST_F(ControlGroupTest, BothVersionsBindTogether) {
    belongs_to("3:cpu:/a\n0::/b\n");
    set("cpu/a/cpu.cfs_quota_us", "500000");
    set("cpu/a/cpu.cfs_period_us", "100000");
    set("b/cpu.max", "300000 100000");
    EXPECT_EQ(processors(), 3u);
}

TEST_F(ControlGroupTest, MemoryLeftCountsWhatGivesWay) {
    belongs_to("0::/slice/pod\n");
    set("slice/memory.max", "max");
    set("slice/memory.current", "900");
    set("slice/pod/memory.max", "1000");
    set("slice/pod/memory.current", "700");
    EXPECT_EQ(memory(), 300u);
    set("slice/pod/memory.stat", "anon 5\ninactive_file 200");
    EXPECT_EQ(memory(), 500u);
    set("slice/memory.max", "950");
    EXPECT_EQ(memory(), 50u);
    set("slice/memory.current", "1200");
    EXPECT_EQ(memory(), 0u);
}

TEST_F(ControlGroupTest, MemoryOfTheFirstVersion) {
    belongs_to("4:memory:/docker/abc\n");
    set("memory/memory.limit_in_bytes", "5000");
    set("memory/memory.usage_in_bytes", "1000");
    set("memory/memory.stat", "total_inactive_file 400");
    EXPECT_EQ(memory(), 4400u);
    set("memory/memory.limit_in_bytes", "9223372036854771712");
    EXPECT_EQ(memory(), 9223372036854771112u);
}

}  // namespace
}  // namespace qmp::os
