// The machine of the test, on every system.
#include "platform/os/hardware.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/os/memory.h"
#include "platform/os/process.h"
#include "platform/os/threads.h"

namespace {

TEST(Hardware, TheVersionBeginsWithTheSystemsName) {
    const std::string version = qmp::os::os_version();
    const std::string name(qmp::os::system_name());
    EXPECT_TRUE(version.starts_with(name + " ")) << version;
    const std::string digits = "0123456789";
    ASSERT_GT(version.size(), name.size() + 1);
    EXPECT_NE(digits.find(version[name.size() + 1]), std::string::npos) << version;
}

TEST(Hardware, ProcessorsAreAtLeastThoseOfThisProcess) {
    const qmp::os::ProcessorCounts counts = qmp::os::processor_counts();
    EXPECT_GE(counts.logical_cores, qmp::os::active_processors());
    EXPECT_LE(counts.physical_cores, counts.logical_cores);
    EXPECT_LE(counts.sockets, counts.physical_cores);
}

TEST(Hardware, InstalledMemoryHoldsWhatTheSystemHas) {
    EXPECT_GE(qmp::os::installed_memory(), qmp::os::total_physical_memory());
}

TEST(Hardware, TheFrequencyIsOneOfAProcessorWhereItIsKnown) {
    const std::uint64_t hertz = qmp::os::base_frequency();
    if (hertz == 0) GTEST_SKIP() << "the system does not tell";
    EXPECT_GT(hertz, 100'000'000u);
    EXPECT_LT(hertz, 20'000'000'000u);
}

TEST(Hardware, TheSerialNumberIsLeftOutUnlessAskedFor) {
    const qmp::os::Motherboard without = qmp::os::motherboard(qmp::os::SerialNumber::leave_out);
    const qmp::os::Motherboard with = qmp::os::motherboard(qmp::os::SerialNumber::read);
    EXPECT_EQ(without.serial_number, "");
    EXPECT_EQ(without.manufacturer, with.manufacturer);
    EXPECT_EQ(without.model, with.model);
    EXPECT_EQ(without.version, with.version);
}

TEST(Hardware, MemoryModulesAreTheSameEveryTime) {
    EXPECT_EQ(qmp::os::memory_modules().size(), qmp::os::memory_modules().size());
}

}  // namespace
