// On which processor the time-stamp counter is measured, in a process that has only some of them.
#include "platform/reference_clocks.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <bit>

namespace {

struct WatchingClocks : qmp::ClockSystem {
    DWORD expected = 0;
    bool always_there = true;
    std::uint64_t readings = 0;
    std::optional<std::int64_t> performance_counter() override {
        ++readings;
        always_there &= GetCurrentProcessorNumber() == expected;
        return qmp::ClockSystem::performance_counter();
    }
};

TEST(TscRate, IsMeasuredOnTheLowestProcessorOfTheProcess) {
    DWORD_PTR process = 0;
    DWORD_PTR system = 0;
    ASSERT_TRUE(GetProcessAffinityMask(GetCurrentProcess(), &process, &system));
    if (process == 0) GTEST_SKIP() << "the process runs in several groups";
    const DWORD_PTR without_lowest = process & (process - 1);
    for (const DWORD_PTR mask : {process, without_lowest}) {
        if (mask == 0) continue;
        ASSERT_TRUE(SetProcessAffinityMask(GetCurrentProcess(), mask));
        WatchingClocks clocks;
        clocks.expected = static_cast<DWORD>(std::countr_zero(std::uint64_t{mask}));
        EXPECT_GT(qmp::ReferenceClocks(clocks).tsc_rate(), 0u);
        EXPECT_GT(clocks.readings, 2u);
        EXPECT_TRUE(clocks.always_there);
        GROUP_AFFINITY after{};
        EXPECT_TRUE(GetThreadGroupAffinity(GetCurrentThread(), &after));
        EXPECT_EQ(after.Mask, mask);
    }
    ASSERT_TRUE(SetProcessAffinityMask(GetCurrentProcess(), process));
}

}  // namespace
