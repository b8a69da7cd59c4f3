#include "platform/os/linux/clock_source.h"

#include <gtest/gtest.h>

#include <fstream>

#include "support/folder.h"

namespace qmp::os {
namespace {

TEST(ClockSource, NamesTheHardware) {
    const kelvara_test::TemporaryFolder folder;
    for (const auto& [source, name] : {std::pair{"tsc\n", "TSC"},
                                       {"hpet\n", "HPET"},
                                       {"acpi_pm\n", "ACPI"},
                                       {"kvm-clock\n", ""},
                                       {"hyperv_clocksource_tsc_page\n", ""},
                                       {"jiffies\n", ""}}) {
        std::ofstream(folder.native("current")) << source;
        EXPECT_EQ(clock_source_in(folder.path("current")), name) << source;
    }
}

TEST(ClockSource, IsUnknownWithoutTheFile) {
    const kelvara_test::TemporaryFolder folder;
    EXPECT_EQ(clock_source_in(folder.path("missing")), std::nullopt);
    std::ofstream(folder.native("empty"));
    EXPECT_EQ(clock_source_in(folder.path("empty")), std::nullopt);
}

}  // namespace
}  // namespace qmp::os
