#include "platform/reference_clocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <vector>

#include "console/console.h"
#include "support/clocks.h"
#include "support/fatal.h"

namespace {

using kelvara_test::FakeClocks;
using qmp::ReferenceClocks;

// A clock of the frequency, beside a time-stamp counter of the rate.
FakeClocks clocks_of(std::int64_t frequency, double rate) {
    FakeClocks clocks;
    clocks.frequency = frequency;
    clocks.ticks_per_reading = frequency / 64;
    clocks.stamps_per_tick = rate / static_cast<double>(frequency);
    return clocks;
}

std::string name_of(FakeClocks clocks) {
    return std::string(ReferenceClocks(clocks).name());
}

TEST(TscRate, IsTicksOfOneCounterByTicksOfTheOther) {
    FakeClocks clocks = clocks_of(10'000'000, 3e9);
    clocks.ticks_per_reading = 1;
    // 625,001 * 300 stamps in 625,000 ticks: the first stamp is taken before the first reading.
    EXPECT_EQ(ReferenceClocks(clocks).tsc_rate(), 3'000'004'800u);
}

TEST(TscRate, PollsForASixteenthOfASecond) {
    FakeClocks clocks;
    clocks.frequency = 1600;
    clocks.ticks_per_reading = 33;
    ReferenceClocks(clocks).tsc_rate();
    // Begins at 33 and ends at the first reading of at least 133.
    EXPECT_EQ(clocks.readings, 5u);
    FakeClocks exact;
    exact.frequency = 1600;
    exact.ticks_per_reading = 25;
    ReferenceClocks(exact).tsc_rate();
    EXPECT_EQ(exact.readings, 5u);
}

TEST(TscRate, IsRoundedDown) {
    FakeClocks clocks;
    clocks.frequency = 100;
    clocks.ticks_per_reading = 7;
    clocks.stamps_per_tick = 0.6;
    EXPECT_EQ(ReferenceClocks(clocks).tsc_rate(), 114u);  // 8 * 100 / 7
}

TEST(TscRate, IsMeasuredOnceAndOnOneProcessor) {
    struct Watching : FakeClocks {
        bool always_pinned = true;
        std::optional<std::int64_t> performance_counter() override {
            always_pinned &= pinned;
            return FakeClocks::performance_counter();
        }
        std::uint64_t time_stamp_counter() override {
            always_pinned &= pinned;
            return FakeClocks::time_stamp_counter();
        }
    } clocks;
    ReferenceClocks reference(clocks);
    const std::uint64_t rate = reference.tsc_rate();
    EXPECT_TRUE(clocks.always_pinned);
    EXPECT_FALSE(clocks.pinned);
    clocks.stamps_per_tick *= 2;
    EXPECT_EQ(reference.tsc_rate(), rate);
    EXPECT_EQ(clocks.pin_calls, 1u);
}

#if GTEST_HAS_DEATH_TEST
constexpr const char* no_affinity = "\nUnable to set Affinity Mask\\.\n$";
constexpr const char* no_measurement = "\nUnable to measure clock speed\\.\n$";

// Says whether the thread was let go before the program ends.
struct Telling : FakeClocks {
    bool unpin_thread() override {
        if (pinned) qmp::console::println("let go");
        return FakeClocks::unpin_thread();
    }
};

template <typename Change>
void expect_tsc_rate_to_fail(Change change, const std::string& regex) {
    Telling clocks;
    change(clocks);
    EXPECT_FATAL(ReferenceClocks(clocks).tsc_rate(), regex);
}

TEST(TscRateDeathTest, EveryFailureEndsTheProgram) {
    expect_tsc_rate_to_fail([](FakeClocks& clocks) { clocks.pins = false; }, std::string("^") + no_affinity);
    const std::string let_go = "^let go\n";
    expect_tsc_rate_to_fail([](FakeClocks& clocks) { clocks.unpins = false; }, let_go + no_affinity);
    expect_tsc_rate_to_fail([](FakeClocks& clocks) { clocks.frequency.reset(); }, let_go + no_measurement);
    expect_tsc_rate_to_fail([](FakeClocks& clocks) { clocks.frequency = 0; }, let_go + no_measurement);
    for (const std::uint64_t readings : {0, 1, 2, 100}) {
        expect_tsc_rate_to_fail([readings](FakeClocks& clocks) { clocks.readings_left = readings; },
                                let_go + no_measurement);
    }
}

TEST(ReferenceClocksDeathTest, RatesNeedTheCounter) {
    const std::string no_counter = "^\nUnable to access performance counter\\.\n$";
    for (const auto rate : {&ReferenceClocks::rdtsc_read_rate, &ReferenceClocks::cpuid_loop_rate}) {
        for (const std::uint64_t readings : {0, 1, 2}) {
            FakeClocks clocks;
            clocks.ticks_per_reading = 1'000'000;
            clocks.readings_left = readings;
            EXPECT_FATAL((ReferenceClocks(clocks).*rate)(), no_counter);
        }
        FakeClocks clocks;
        clocks.frequency.reset();
        EXPECT_FATAL((ReferenceClocks(clocks).*rate)(), no_counter);
    }
    FakeClocks clocks;
    clocks.frequency.reset();
    EXPECT_FATAL(ReferenceClocks(clocks).name(), no_counter);
}
#endif

TEST(ReferenceClockName, FollowsTheFrequency) {
    for (const double rate : {1e6, 3e9, 14'318'180.0 * 1024}) {
        EXPECT_EQ(name_of(clocks_of(14'318'180, rate)), "HPET");
        EXPECT_EQ(name_of(clocks_of(3'579'545, rate)), "ACPI");
    }
    EXPECT_EQ(name_of(clocks_of(10'000'000, 3e9)), "");
    EXPECT_EQ(name_of(clocks_of(14'318'181, 3e9)), "");
    EXPECT_EQ(name_of(clocks_of(3'579'544, 3e9)), "");
}

TEST(ReferenceClockName, KnownFrequenciesNeedNoMeasurement) {
    FakeClocks clocks = clocks_of(14'318'180, 3e9);
    ReferenceClocks(clocks).name();
    EXPECT_EQ(clocks.readings, 0u);
}

// Clocks whose measured rate is exactly this.
struct ExactClocks : FakeClocks {
    std::uint64_t rate = 0;
    std::uint64_t stamps = 0;
    std::uint64_t time_stamp_counter() override {
        const std::uint64_t value = stamps;
        stamps += rate;  // one second passes between the two readings
        return value;
    }
};

std::string exact_name(std::int64_t frequency, std::uint64_t rate) {
    ExactClocks clocks;
    clocks.frequency = frequency;
    clocks.ticks_per_reading = frequency;
    clocks.rate = rate;
    ReferenceClocks reference(clocks);
    EXPECT_EQ(reference.tsc_rate(), rate);
    return std::string(reference.name());
}

TEST(ReferenceClockName, IsTheTimeStampCounterStrictlyBetweenTwoRatios) {
    constexpr std::uint64_t frequency = 3'000'000;
    EXPECT_EQ(exact_name(frequency, 1024 * frequency), "TSC");
    EXPECT_EQ(exact_name(frequency, 1008 * frequency), "");
    EXPECT_EQ(exact_name(frequency, 1008 * frequency + 1), "TSC");
    EXPECT_EQ(exact_name(frequency, 1040 * frequency), "");
    EXPECT_EQ(exact_name(frequency, 1040 * frequency - 1), "TSC");
    EXPECT_EQ(exact_name(10'000'000, 3'000'000'000), "");
    EXPECT_EQ(exact_name(14'318'180, 14'318'180ull * 300), "HPET");
}

TEST(ReferenceClockName, WhatTheSystemSaysComesFirst) {
    for (const char* source : {"TSC", "HPET", "ACPI", ""}) {
        FakeClocks clocks = clocks_of(14'318'180, 3e9);
        clocks.source = source;
        EXPECT_EQ(ReferenceClocks(clocks).name(), source);
        EXPECT_EQ(clocks.readings, 0u);
    }
}

TEST(LoopRates, CountWholeBlocksUntilTheTimeIsUp) {
    for (const auto rate : {&ReferenceClocks::rdtsc_read_rate, &ReferenceClocks::cpuid_loop_rate}) {
        FakeClocks clocks;
        clocks.ticks_per_reading = 300'000;  // 0.03 seconds
        // Three blocks, and a last reading: 30,000 in 0.12 seconds.
        EXPECT_EQ((ReferenceClocks(clocks).*rate)(), 250'000u);
        EXPECT_EQ(clocks.readings, 5u);

        FakeClocks exact;
        exact.ticks_per_reading = 625'000;  // exactly 0.0625 seconds: one block is enough
        EXPECT_EQ((ReferenceClocks(exact).*rate)(), 80'000u);
        FakeClocks truncated;
        truncated.ticks_per_reading = 700'000;
        EXPECT_EQ((ReferenceClocks(truncated).*rate)(), 71'428u);
        EXPECT_EQ(truncated.pin_calls, 0u);
    }
}

TEST(LoopRates, AreMeasuredOnce) {
    FakeClocks clocks;
    clocks.ticks_per_reading = 700'000;
    ReferenceClocks reference(clocks);
    const std::uint64_t reads = reference.rdtsc_read_rate();
    const std::uint64_t loops = reference.cpuid_loop_rate();
    const std::uint64_t readings = clocks.readings;
    clocks.ticks_per_reading *= 3;
    EXPECT_EQ(reference.rdtsc_read_rate(), reads);
    EXPECT_EQ(reference.cpuid_loop_rate(), loops);
    EXPECT_EQ(clocks.readings, readings);
}

TEST(LoopRates, ManyThreadsMeasureOnce) {
    FakeClocks clocks;
    clocks.ticks_per_reading = 700'000;
    ReferenceClocks reference(clocks);
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] { EXPECT_EQ(reference.rdtsc_read_rate(), 71'428u); });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(clocks.readings, 3u);
}

TEST(ReferenceClocks, OfThisMachine) {
    std::thread([] {
        const auto before = qmp::os::thread_group_affinity();
        EXPECT_GT(qmp::tsc_rate(), 1'000'000u);
        EXPECT_EQ(qmp::os::thread_group_affinity(), before);
    }).join();
    EXPECT_EQ(qmp::tsc_rate(), qmp::tsc_rate());
    EXPECT_GT(qmp::rdtsc_read_rate(), 1000u);
    EXPECT_GT(qmp::cpuid_loop_rate(), 1000u);
    const std::vector<std::string_view> names = {"TSC", "HPET", "ACPI", ""};
    EXPECT_NE(std::find(names.begin(), names.end(), qmp::reference_clock_name()), names.end());
}

}  // namespace
