// The facts of machines whose files the tests write.
#include "platform/os/linux/hardware_facts.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "support/folder.h"

namespace qmp::os {
namespace {

class HardwareFacts : public testing::Test {
  protected:
    // One line, as the kernel writes it.
    void write(const std::string& name, const std::string& content) {
        const std::filesystem::path path = folder_.native(name);
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << content << "\n";
    }
    void write_processor(int number, int package, int core, const std::string& die = "") {
        const std::string folder = "sys/devices/system/cpu/cpu" + std::to_string(number) + "/topology/";
        write(folder + "physical_package_id", std::to_string(package));
        write(folder + "core_id", std::to_string(core));
        if (!die.empty()) write(folder + "die_id", die);
    }
    std::string root() const { return folder_.path(); }

    kelvara_test::TemporaryFolder folder_;
};

TEST_F(HardwareFacts, OfAMachineWithoutAnyFilesAreUnknown) {
    EXPECT_EQ(os_version_of(root()), "");
    const ProcessorCounts counts = processor_counts_of(root());
    EXPECT_EQ(counts.logical_cores, 0u);
    EXPECT_EQ(counts.physical_cores, 0u);
    EXPECT_EQ(counts.sockets, 0u);
    EXPECT_EQ(base_frequency_of(root()), 0u);
    EXPECT_EQ(memory_blocks_of(root()), 0u);
    const Motherboard board = motherboard_of(root(), SerialNumber::read);
    EXPECT_EQ(board.manufacturer + board.model + board.version + board.serial_number, "");
    EXPECT_TRUE(memory_modules_of(root()).empty());
}

TEST_F(HardwareFacts, TheVersionNamesKernelAndDistribution) {
    write("proc/sys/kernel/osrelease", "6.1.0-18-amd64");
    EXPECT_EQ(os_version_of(root()), "Linux 6.1.0-18-amd64");
    write("usr/lib/os-release", "NAME=x\nPRETTY_NAME='Plain Linux'");
    EXPECT_EQ(os_version_of(root()), "Linux 6.1.0-18-amd64 (Plain Linux)");
    write("etc/os-release",
          "NAME=\"Debian GNU/Linux\"\nPRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\nID=debian");
    EXPECT_EQ(os_version_of(root()), "Linux 6.1.0-18-amd64 (Debian GNU/Linux 12 (bookworm))");
    write("etc/os-release", "PRETTY_NAME=\"a \\\"b\\\" \\$c");
    EXPECT_EQ(os_version_of(root()), "Linux 6.1.0-18-amd64 (a \"b\" $c)");
    write("etc/os-release", "PRETTY_NAME=Void");
    EXPECT_EQ(os_version_of(root()), "Linux 6.1.0-18-amd64 (Void)");
}

TEST_F(HardwareFacts, WithoutAKernelReleaseTheVersionIsEmpty) {
    write("etc/os-release", "PRETTY_NAME=Void");
    EXPECT_EQ(os_version_of(root()), "");
}

TEST_F(HardwareFacts, TwoSocketsOfTwoCoresOfTwoThreads) {
    for (int i = 0; i < 8; ++i) write_processor(i, i / 2 % 2, i % 2);
    write("sys/devices/system/cpu/cpufreq/policy0/any", "0");
    write("sys/devices/system/cpu/cpuidle/any", "0");
    const ProcessorCounts counts = processor_counts_of(root());
    EXPECT_EQ(counts.logical_cores, 8u);
    EXPECT_EQ(counts.physical_cores, 4u);
    EXPECT_EQ(counts.sockets, 2u);
}

TEST_F(HardwareFacts, CoresAreNumberedAnewOnEveryDie) {
    for (int i = 0; i < 4; ++i) write_processor(i, 0, i % 2, std::to_string(i / 2));
    EXPECT_EQ(processor_counts_of(root()).physical_cores, 4u);
    EXPECT_EQ(processor_counts_of(root()).sockets, 1u);
}

TEST_F(HardwareFacts, ProcessorsThatAreOfflineDoNotCount) {
    for (int i = 0; i < 3; ++i) write_processor(i, 0, i);
    write("sys/devices/system/cpu/cpu1/online", "1");
    write("sys/devices/system/cpu/cpu2/online", "0");
    write("sys/devices/system/cpu/cpu3/online", "0");  // its topology is gone
    EXPECT_EQ(processor_counts_of(root()).logical_cores, 2u);
    EXPECT_EQ(processor_counts_of(root()).physical_cores, 2u);
}

TEST_F(HardwareFacts, AnUnknownPackageLeavesTheSocketsUnknown) {
    write_processor(0, -1, 0);
    write_processor(1, -1, 1);
    const ProcessorCounts counts = processor_counts_of(root());
    EXPECT_EQ(counts.logical_cores, 2u);
    EXPECT_EQ(counts.physical_cores, 2u);
    EXPECT_EQ(counts.sockets, 0u);
}

TEST_F(HardwareFacts, TheFrequencyIsTheDriversWhereItTells) {
    const std::string processor = "sys/devices/system/cpu/cpu0/";
    write("proc/cpuinfo", "flags\t\t: fpu hypervisor lm\ncpu MHz\t\t: 2000.125");
    EXPECT_EQ(base_frequency_of(root()), 2'000'125'000u);
    // Where a driver scales it, the frequency of the moment is not the base.
    write(processor + "cpufreq/scaling_driver", "acpi-cpufreq");
    EXPECT_EQ(base_frequency_of(root()), 0u);
    write(processor + "cpufreq/scaling_available_frequencies", "4000000 3400000 1400000 ");
    EXPECT_EQ(base_frequency_of(root()), 4'000'000'000u);
    write(processor + "acpi_cppc/nominal_freq", "3500");
    EXPECT_EQ(base_frequency_of(root()), 3'500'000'000u);
    write(processor + "cpufreq/base_frequency", "2800000");
    EXPECT_EQ(base_frequency_of(root()), 2'800'000'000u);
    write(processor + "cpufreq/base_frequency", "0");
    EXPECT_EQ(base_frequency_of(root()), 3'500'000'000u);
}

TEST_F(HardwareFacts, TheFrequencyOfTheMomentIsBelievedInAGuestOnly) {
    write("proc/cpuinfo", "flags\t\t: fpu hypervisory lm\ncpu MHz\t\t: 2000.125");
    EXPECT_EQ(base_frequency_of(root()), 0u);
    for (const char* nonsense : {"", "none", "-1", "0.000", "inf", "nan", "1000000"}) {
        write("proc/cpuinfo", std::string("flags : hypervisor\ncpu MHz : ") + nonsense);
        EXPECT_EQ(base_frequency_of(root()), 0u) << nonsense;
    }
}

TEST_F(HardwareFacts, InstalledMemoryIsCountedInBlocks) {
    const std::string folder = "sys/devices/system/memory/";
    for (const char* block : {"memory0", "memory1", "memory32"}) write(folder + block + "/online", "1");
    EXPECT_EQ(memory_blocks_of(root()), 0u);
    write(folder + "block_size_bytes", "8000000");
    EXPECT_EQ(memory_blocks_of(root()), 3u * 128 * 1024 * 1024);
}

TEST_F(HardwareFacts, TheMotherboardIsDescribedWithoutItsSerialNumber) {
    const std::string folder = "sys/class/dmi/id/";
    write(folder + "board_vendor", "Maker Inc.  ");
    write(folder + "board_name", "X570");
    write(folder + "board_version", "Rev 1.0");
    write(folder + "board_serial", "SN-1234");
    const Motherboard board = motherboard_of(root(), SerialNumber::leave_out);
    EXPECT_EQ(board.manufacturer, "Maker Inc.");
    EXPECT_EQ(board.model, "X570");
    EXPECT_EQ(board.version, "Rev 1.0");
    EXPECT_EQ(board.serial_number, "");
    EXPECT_EQ(motherboard_of(root(), SerialNumber::read).serial_number, "SN-1234");
}

// The number is the administrator's alone to read.
TEST_F(HardwareFacts, ASerialNumberThatMayNotBeReadIsEmpty) {
    const std::string name = "sys/class/dmi/id/board_serial";
    write("sys/class/dmi/id/board_name", "X570");
    write(name, "SN-1234");
    std::filesystem::permissions(folder_.native(name), std::filesystem::perms::none);
    // Nobody forbids anything to the administrator.
    if (geteuid() == 0) std::filesystem::remove(folder_.native(name));
    const Motherboard board = motherboard_of(root(), SerialNumber::read);
    EXPECT_EQ(board.model, "X570");
    EXPECT_EQ(board.serial_number, "");
}

TEST_F(HardwareFacts, MemoryModulesOfTheErrorCorrectingControllers) {
    const std::string folder = "sys/devices/system/edac/mc/";
    write(folder + "mc0/dimm0/size", "16384");
    write(folder + "mc0/dimm1/size", "0");
    write(folder + "mc0/dimm2/size", "nothing");
    write(folder + "mc1/dimm0/size", "8192");
    write(folder + "mc1/csrow0/size", "8192");
    const std::vector<MemoryModule> modules = memory_modules_of(root());
    ASSERT_EQ(modules.size(), 2u);
    EXPECT_EQ(modules[0].capacity, "16384M");
    EXPECT_EQ(modules[0].manufacturer + modules[0].part_number, "");
    EXPECT_EQ(modules[1].capacity, "8192M");
}

TEST_F(HardwareFacts, TheFirmwaresTableIsPreferredToTheControllers) {
    write("sys/devices/system/edac/mc/mc0/dimm0/size", "16384");
    std::string table(0x1b, '\0');
    table[0] = 17;
    table[1] = 0x1b;
    table[0x0d] = 0x20;  // 8192 MiB
    table[0x17] = 1;
    table[0x1a] = 2;
    table += std::string("Maker\0Part\0\0", 12);
    write("sys/firmware/dmi/tables/DMI", table);
    const std::vector<MemoryModule> modules = memory_modules_of(root());
    ASSERT_EQ(modules.size(), 1u);
    EXPECT_EQ(modules[0].manufacturer, "Maker");
    EXPECT_EQ(modules[0].part_number, "Part");
    EXPECT_EQ(modules[0].capacity, "8192M");
}

}  // namespace
}  // namespace qmp::os
