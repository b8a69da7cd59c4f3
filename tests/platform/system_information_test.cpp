#include "platform/system_information.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/build_identity.h"
#include "platform/os/memory.h"
#include "platform/startup_state.h"
#include "platform/topology.h"
#include "support/console.h"

namespace kelvara {
namespace {

using kelvara_test::printed_by;

constexpr const char* suppressed = "Suppressed - Personally identifiable information is opt-in only.";

SystemInformation server() {
    SystemInformation information;
    information.os_version = "Windows 10.0 Build 19041";
    information.processor_name = "A Processor @ 2.80GHz";
    information.logical_cores = 1024;
    information.physical_cores = 512;
    information.sockets = 2;
    information.numa_nodes = 8;
    information.base_frequency = 2'800'000'000;
    information.total_memory = std::uint64_t{64} << 30;
    information.usable_memory = (std::uint64_t{64} << 30) - (std::uint64_t{512} << 20);
    information.motherboard_manufacturer = "Maker Inc.";
    information.motherboard_model = "Board";
    information.motherboard_version = "Rev 1.0";
    information.motherboard_serial_number = suppressed;
    information.memory_modules = {{"Maker", "Part-1", std::uint64_t{32} << 30},
                                  {"", "", std::uint64_t{32} << 30}};
    return information;
}

std::string screen_of(const SystemInformation& information) {
    return printed_by([&] { print_system_info(information); });
}

std::string version_line() {
    return "Version:              " + build_version_with_target() + "\n";
}

TEST(SystemInformationScreen, ShowsWhatIsKnown) {
    EXPECT_EQ(screen_of(server()),
              version_line() +
                  "Processor(s):         A Processor @ 2.80GHz\n"
                  "Topology:             1024 threads / 512 cores / 2 sockets / 8 NUMA nodes\n"
                  "Physical Memory:      68,719,476,736 (64.0 GiB)\n"
                  "Usable Memory:        68,182,605,824 (63.5 GiB)\n"
                  "CPU Base Frequency:   2,800,000,000 Hz\n");
}

TEST(SystemInformationScreen, OfAnUnknownMachine) {
    EXPECT_EQ(screen_of({}), version_line() +
                                 "Processor(s):         Unable to Detect\n"
                                 "Topology:             ? threads / ? cores / ? sockets / ? NUMA nodes\n"
                                 "Physical Memory:      Unable to Detect\n"
                                 "Usable Memory:        Unable to Detect\n"
                                 " CPU BaseFrequency:   Unable to Detect\n");
}

TEST(SystemInformationScreen, OneIsSingular) {
    SystemInformation information = server();
    information.logical_cores = information.physical_cores = information.sockets = information.numa_nodes = 1;
    EXPECT_NE(
        screen_of(information).find("Topology:             1 thread / 1 core / 1 socket / 1 NUMA node\n"),
        std::string::npos);
    information.sockets = 0;
    EXPECT_NE(screen_of(information).find(" / 1 core / ? sockets / 1 NUMA node\n"), std::string::npos);
}

TEST(SystemInformationScreen, HasNoSerialNumber) {
    SystemInformation information = server();
    information.motherboard_serial_number = "SN-1234";
    EXPECT_EQ(screen_of(information), screen_of(server()));
}

TEST(SystemInformationText, ShowsWhatIsKnown) {
    EXPECT_EQ(system_info_text(server()),
              "Operating System:      Windows 10.0 Build 19041\r\n"
              "Processor(s):\r\n"
              "    Name:              A Processor @ 2.80GHz\r\n"
              "    Logical Cores:     1,024\r\n"
              "    Physical Cores:    512\r\n"
              "    Sockets:           2\r\n"
              "    NUMA Nodes:        8\r\n"
              "    Base Frequency:    2,800,000,000 Hz\r\n"
              "Motherboard:\r\n"
              "    Manufacturer:      Maker Inc.\r\n"
              "    Model:             Board\r\n"
              "    Version:           Rev 1.0\r\n"
              "    Serial Number:     Suppressed - Personally identifiable information is opt-in only.\r\n"
              "Memory:\r\n"
              "    Usable Memory:     68,182,605,824 (63.5 GiB)\r\n"
              "    Total Memory:      68,719,476,736 (64.0 GiB)\r\n"
              "    DIMM:              Maker, Part-1, 34,359,738,368 (32.0 GiB)\r\n"
              "    DIMM:              34,359,738,368 (32.0 GiB)\r\n"
              "\r\n");
}

TEST(SystemInformationText, OfAnUnknownMachine) {
    EXPECT_EQ(system_info_text({}),
              "Operating System:      \r\n"
              "Processor(s):\r\n"
              "    Name:              Unable to Detect\r\n"
              "    Logical Cores:     Unable to Detect\r\n"
              "    Physical Cores:    Unable to Detect\r\n"
              "    Sockets:           Unable to Detect\r\n"
              "    NUMA Nodes:        Unable to Detect\r\n"
              "    Base Frequency:    Unable to Detect\r\n"
              "Motherboard:\r\n"
              "    Manufacturer:      Unable to Detect\r\n"
              "    Model:             Unable to Detect\r\n"
              "    Version:           Unable to Detect\r\n"
              "    Serial Number:     Unable to Detect\r\n"
              "Memory:\r\n"
              "    Usable Memory:     Unable to Detect\r\n"
              "    Total Memory:      Unable to Detect\r\n"
              "\r\n");
}

TEST(MemoryModules, CapacitiesAreSizesInAnyUnit) {
    EXPECT_EQ(memory_module_of({"a", "b", "17179869184"}).capacity, std::uint64_t{16} << 30);
    EXPECT_EQ(memory_module_of({"a", "b", "16384M"}).capacity, std::uint64_t{16} << 30);
    EXPECT_EQ(memory_module_of({"a", "b", "512K"}).capacity, std::uint64_t{512} << 10);
    EXPECT_EQ(memory_module_of({"a", "b", ""}).capacity, 0u);
    EXPECT_EQ(memory_module_of({"a", "b", "unknown"}).capacity, 0u);
    const MemoryModule module = memory_module_of({"a", "b", "1"});
    EXPECT_EQ(module.manufacturer, "a");
    EXPECT_EQ(module.part_number, "b");
}

TEST(MemoryModules, UnknownCapacitiesSaySo) {
    SystemInformation information = server();
    information.memory_modules = {memory_module_of({"Maker", "Part", ""})};
    EXPECT_NE(system_info_text(information).find("    DIMM:              Maker, Part, Unable to Detect\r\n"),
              std::string::npos);
}

// The flag of the program's start, put back.
class ThisMachine : public testing::Test {
  protected:
    ~ThisMachine() override { startup_state().personal_data_shown = shown_; }
    const bool shown_ = startup_state().personal_data_shown;
};

TEST_F(ThisMachine, SerialNumbersAreSuppressedUnlessPersonalDataIsShown) {
    startup_state().personal_data_shown = false;
    EXPECT_EQ(gather_system_info().motherboard_serial_number, suppressed);
    startup_state().personal_data_shown = true;
    EXPECT_EQ(gather_system_info().motherboard_serial_number,
              qmp::os::motherboard(qmp::os::SerialNumber::read).serial_number);
}

TEST_F(ThisMachine, IsWhatTheSystemTells) {
    const SystemInformation information = gather_system_info();
    EXPECT_EQ(information.os_version, qmp::os::os_version());
    EXPECT_FALSE(information.processor_name.empty());
    EXPECT_EQ(information.logical_cores, qmp::os::processor_counts().logical_cores);
    EXPECT_EQ(information.physical_cores, qmp::os::processor_counts().physical_cores);
    EXPECT_EQ(information.sockets, qmp::os::processor_counts().sockets);
    EXPECT_EQ(information.numa_nodes, qmp::numa_table().size());
    EXPECT_EQ(information.total_memory, qmp::os::installed_memory());
    EXPECT_EQ(information.usable_memory, qmp::os::total_physical_memory());
    EXPECT_EQ(information.memory_modules.size(), qmp::os::memory_modules().size());
    const qmp::os::Motherboard board = qmp::os::motherboard(qmp::os::SerialNumber::leave_out);
    EXPECT_EQ(information.motherboard_manufacturer, board.manufacturer);
    EXPECT_EQ(information.motherboard_model, board.model);
    EXPECT_EQ(information.motherboard_version, board.version);
}

}  // namespace
}  // namespace kelvara
