// Threads, what they are bound to, and the line that a running test leaves.
#include "stress/stress_threads.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <system_error>

#include "errors/system_exception.h"
#include "stress/floating_point_peak.h"
#include "stress/kernels/peak.h"
#include "stress/running_line.h"
#include "stress/stress_machine_fake.h"
#include "support/console.h"
#include "support/levels.h"

namespace kelvara {
namespace {

using kelvara_test::printed_by;
using kelvara_test::small_settings;
using kelvara_test::SteppingMachine;

TEST(StressThreads, AreBoundToTheCoresInTurn) {
    SteppingMachine fake;
    StressThreads threads(fake.machine, small_settings(6, 0));
    std::atomic<std::uint64_t> sum = 0;
    threads.run(6, [&](std::uint64_t i) { sum += i + 1; });
    EXPECT_EQ(sum, 21u);
    std::sort(fake.bound.begin(), fake.bound.end());
    EXPECT_EQ(fake.bound, (std::vector<std::uint64_t>{0, 0, 1, 1, 2, 3}));
}

TEST(StressThreads, AreFreeInGlobalMode) {
    SteppingMachine fake;
    StressSettings settings = small_settings(3, 0);
    settings.mode = StressMode::global;
    StressThreads threads(fake.machine, settings);
    threads.run(3, [](std::uint64_t) {});
    EXPECT_TRUE(fake.bound.empty());
}

TEST(StressThreads, ARefusedCoreIsToldOnceAndTheThreadRuns) {
    SteppingMachine fake;
    fake.refuses = true;
    StressThreads threads(fake.machine, small_settings(6, 0));
    std::atomic<std::uint64_t> runs = 0;
    const std::string text = printed_by([&] {
        threads.run(6, [&](std::uint64_t) { ++runs; });
        threads.run(6, [&](std::uint64_t) { ++runs; });
    });
    EXPECT_EQ(runs, 12u);
    EXPECT_EQ(std::count(text.begin(), text.end(), ':'), 4);
    for (const char* core : {"0", "1", "2", "3"}) {
        EXPECT_NE(text.find(std::string("\nFailed to set core affinity to core: ") + core + "\n"),
                  std::string::npos)
            << text;
    }
}

TEST(StressThreads, TooManyAreRefusedAndTheOthersToldToEnd) {
    SteppingMachine fake;
    std::atomic<std::uint64_t> started = 0;
    fake.machine.start_thread = [&](std::function<void()> work) -> std::thread {
        if (started == 2)
            throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
        ++started;
        return qmp::start_child_thread(std::move(work));
    };
    StressThreads threads(fake.machine, small_settings(3, 0));
    std::atomic<bool> over = false;
    const auto run = [&] {
        threads.run(
            3,
            [&](std::uint64_t) {
                while (!over) std::this_thread::yield();
            },
            [&] { over = true; });
    };
    try {
        run();
        FAIL() << "no exception";
    } catch (const qmp::SystemException& exception) {
        EXPECT_EQ(exception.message(), "Unable to start so many threads.");
    }
}

TEST(RunningLine, IsOneLineInAPipe) {
    const StressMachine machine;
    const std::string text = printed_by([&] {
        RunningLine line(
            "Running Test Hybrid NTT", [] { return std::string("never"); }, machine.start_thread);
    });
    EXPECT_EQ(text, "Running Test Hybrid NTT\n");
}

TEST(RunningLine, ErrorsStandBelow) {
    const StressMachine machine;
    const std::string text = printed_by([&] {
        RunningLine line(
            "Running", [] { return std::string(); }, machine.start_thread);
        line.error("Checksum Mismatch");
        line.error("Checksum Mismatch");
    });
    EXPECT_EQ(text, "Running\nChecksum Mismatch\nChecksum Mismatch\n");
}

TEST(FloatingPointPeak, IsMeasuredByAllItsRounds) {
    kelvara_test::for_every_level([](qmp::InstructionLevel level) {
        const PeakKernel& kernel = current_peak_kernel();
        const bool fused = level <= qmp::InstructionLevel::fma4;
        const double lanes = kernel.operations / (fused ? 12 : 24);
        EXPECT_TRUE(lanes == 2 || lanes == 4 || lanes == 8);
        // Every chain goes from its start half of the way to 3/2.
        double expected = 0;
        for (int chain = 0; chain < 12; ++chain) expected += lanes * (1 + 0.0625 * chain);
        for (std::uint64_t rounds = 0; rounds < 20; ++rounds) {
            EXPECT_DOUBLE_EQ(kernel.run(rounds), expected);
            expected = 0.5 * expected + 0.75 * 12 * lanes;
        }
    });
}

TEST(FloatingPointPeak, TakesNoMoreThreadsThanCores) {
    SteppingMachine fake;
    StressThreads one(fake.machine, small_settings(1, 0));
    const double peak = measure_floating_point_peak(fake.machine, one);
    EXPECT_GT(peak, 0);
    StressThreads many(fake.machine, small_settings(1000, 0));
    EXPECT_GT(measure_floating_point_peak(fake.machine, many), 0);
    EXPECT_LE(fake.bound.size(), 1u + 4u);
}

}  // namespace
}  // namespace kelvara
