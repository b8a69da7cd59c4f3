// Whole runs of the tester: what is printed, what is counted, and when it ends.
#include "stress/continuous_run.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "stress/stress_machine_fake.h"
#include "stress/test_run.h"
#include "support/console.h"

namespace kelvara {
namespace {

using kelvara_test::FaultyTest;
using kelvara_test::printed_by;
using kelvara_test::small_settings;
using kelvara_test::SteppingMachine;
using kelvara_test::with_test;

constexpr std::uint64_t mebibyte = 1 << 20;

struct Result {
    StressEnd end;
    std::string text;
};

Result run(const StressSettings& settings, std::span<const StressTestEntry> tests, std::uint64_t iterations) {
    SteppingMachine fake;
    Result result;
    result.text =
        printed_by([&] { result.end = run_stress_tests(settings, tests, fake.machine, iterations); });
    return result;
}

std::uint64_t count(const std::string& text, const std::string& part) {
    std::uint64_t found = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++found;
    return found;
}

// The text without what is measured.
std::string before_figures(const std::string& text) {
    return text.substr(0, text.find("Measuring"));
}

TEST(ContinuousRun, BeginsWithTheReservation) {
    const Result result = run(small_settings(2, mebibyte), stress_tests(), 1);
    EXPECT_EQ(before_figures(result.text),
              "Starting Continuous Stress-Test...\n\nReserving Working Memory...     1.00 MiB\n");
    EXPECT_EQ(result.end, StressEnd::enough);
}

TEST(ContinuousRun, RunsEveryTestOncePerIteration) {
    for (const StressMode mode : {StressMode::local, StressMode::global}) {
        StressSettings settings = small_settings(2, mebibyte);
        settings.mode = mode;
        const Result result = run(settings, stress_tests(), 2);
        EXPECT_EQ(result.end, StressEnd::enough);
        EXPECT_EQ(count(result.text, "Iteration "), 2u) << result.text;
        EXPECT_EQ(count(result.text, "Iteration 2  Total Elapsed Time: "), 1u);
        std::size_t at = 0;
        for (const StressTestEntry& entry : stress_tests()) {
            const std::string name = entry.name;
            // Zero seconds are one product for every thread.
            for (const std::string& line :
                 {"Preparing " + name + " Test...\n", "Running Test " + name + "\n",
                  name + " Test: Passed  Test Time: ", std::string("    2 products of ")}) {
                at = result.text.find(line, at);
                ASSERT_NE(at, std::string::npos) << line << result.text;
            }
        }
        EXPECT_EQ(count(result.text, "Passed"), 12u);
        EXPECT_EQ(count(result.text, "floating-point operations/s (estimated)"), 4u);
    }
}

TEST(ContinuousRun, SkipsWhatIsDisabledOrUnavailable) {
    const std::vector<StressTestEntry> tests = {stress_tests()[0], with_test(stress_tests()[1], nullptr),
                                                stress_tests()[2]};
    StressSettings settings = small_settings(1, mebibyte);
    settings.enabled = {true, true, false};
    const Result result = run(settings, tests, 1);
    EXPECT_EQ(count(result.text, "Running Test "), 1u);
    EXPECT_EQ(count(result.text, "Running Test Basecase + Karatsuba"), 1u);
}

TEST(ContinuousRun, EndsWhenNothingIsLeftToRun) {
    StressSettings settings = small_settings(1, mebibyte);
    settings.enable_all(false);
    const Result result = run(settings, stress_tests(), 0);
    EXPECT_EQ(result.end, StressEnd::nothing_run);
    EXPECT_TRUE(result.text.ends_with("\nNothing was run. Stopping test...\n")) << result.text;
}

TEST(ContinuousRun, TinyMemoryIsToldForEveryTest) {
    for (const std::uint64_t bytes : {0u, 1u, 64u, 512u}) {
        for (const StressMode mode : {StressMode::local, StressMode::global}) {
            StressSettings settings = small_settings(1, bytes);
            settings.mode = mode;
            const Result result = run(settings, stress_tests(), 0);
            EXPECT_EQ(result.end, StressEnd::nothing_run);
            for (const StressTestEntry& entry : stress_tests()) {
                EXPECT_EQ(count(result.text,
                                std::string(entry.name) + " Test: Insufficient memory to run this test.\n"),
                          1u)
                    << result.text;
            }
            EXPECT_EQ(count(result.text, "Preparing"), 0u);
            EXPECT_EQ(count(result.text, "Nothing was run. Stopping test...\n"), 1u);
        }
    }
}

TEST(ContinuousRun, MoreThreadsThanMemoryIsInsufficient) {
    for (const StressMode mode : {StressMode::local, StressMode::global}) {
        StressSettings settings = small_settings(~std::uint64_t{0}, mebibyte);
        settings.mode = mode;
        const Result result = run(settings, stress_tests(), 0);
        EXPECT_EQ(count(result.text, "Insufficient memory to run this test."), 6u) << result.text;
    }
}

TEST(ContinuousRun, MoreThreadsThanCoresShareThem) {
    StressSettings settings = small_settings(9, 2 * mebibyte);
    settings.enabled = {true, false, false, false, false, false};
    const Result result = run(settings, stress_tests(), 1);
    EXPECT_EQ(result.end, StressEnd::enough);
    EXPECT_EQ(count(result.text, "    9 products of 1,024 words on 9 threads\n"), 1u) << result.text;
}

StressReport run_one(const StressTestEntry& entry, const StressSettings& settings) {
    SteppingMachine fake;
    StressThreads threads(fake.machine, settings);
    const std::unique_ptr<qmp::HeapBlock> heap = settings.allocator->create_heap(settings.memory, nullptr, 1);
    StressReport report;
    printed_by([&] {
        report = run_stress_test(entry, settings, {static_cast<std::byte*>(heap->base), heap->size},
                                 qmp::ParallelContext::sequential(), 0, fake.machine, threads);
    });
    return report;
}

TEST(TestRun, GoesOnUntilTheTimeIsOver) {
    // One reading of the clock, which is a second, after every product.
    for (const std::uint64_t seconds : {0u, 1u, 2u, 7u}) {
        const StressReport report = run_one(stress_tests()[0], small_settings(1, mebibyte, seconds));
        EXPECT_TRUE(report.ran);
        EXPECT_EQ(report.products, std::max<std::uint64_t>(seconds, 1));
        EXPECT_EQ(report.errors, 0u);
        EXPECT_GE(report.seconds, static_cast<double>(seconds));
    }
}

TEST(TestRun, HugeTimesDoNotOverflow) {
    const FaultyTest faulty(*stress_tests()[0].test, 20, FaultyTest::Fault::product);
    const StressReport report =
        run_one(with_test(stress_tests()[0], &faulty), small_settings(1, mebibyte, ~std::uint64_t{0}));
    EXPECT_EQ(report.products, 21u);
    EXPECT_EQ(report.errors, 1u);
}

class Faults : public testing::TestWithParam<std::size_t> {
  protected:
    // The catalogue with an error in one test.
    std::vector<StressTestEntry> with_fault(const FaultyTest& faulty) const {
        std::vector<StressTestEntry> tests(stress_tests().begin(), stress_tests().end());
        tests[GetParam()].test = &faulty;
        return tests;
    }
    const StressTest& test() const { return *stress_tests()[GetParam()].test; }
    std::string name() const { return stress_tests()[GetParam()].name; }
};

INSTANTIATE_TEST_SUITE_P(Catalogue, Faults, testing::Range(std::size_t{0}, std::size_t{6}),
                         kelvara_test::code_of_test);

TEST_P(Faults, StopTheRunAfterTheIteration) {
    // The first product of the second iteration.
    const FaultyTest faulty(test(), 1, FaultyTest::Fault::product, 12345);
    const std::vector<StressTestEntry> tests = with_fault(faulty);
    const Result result = run(small_settings(1, mebibyte), tests, 0);
    EXPECT_EQ(result.end, StressEnd::errors);
    EXPECT_EQ(count(result.text, "Checksum Mismatch\n"), 1u) << result.text;
    EXPECT_EQ(count(result.text, "Running Test " + name() + "\nChecksum Mismatch\n" + name() +
                                     " Test: Failed (1 error)  Test Time: "),
              1u)
        << result.text;
    // The other tests had their turn.
    EXPECT_EQ(count(result.text, "Passed"), 11u);
    EXPECT_EQ(count(result.text, "Iteration "), 2u);
    EXPECT_TRUE(result.text.ends_with("\nErrors encountered. Stopping test...\n")) << result.text;
}

TEST_P(Faults, AreCountedWhereTheRunGoesOn) {
    const FaultyTest faulty(test(), 0, FaultyTest::Fault::product, ~std::uint64_t{0});
    const std::vector<StressTestEntry> tests = with_fault(faulty);
    StressSettings settings = small_settings(1, mebibyte);
    settings.stop_on_error = false;
    const Result result = run(settings, tests, 2);
    EXPECT_EQ(result.end, StressEnd::enough);
    EXPECT_EQ(count(result.text, "Checksum Mismatch\n"), 1u);
    EXPECT_EQ(count(result.text, "Failed (1 error)"), 1u);
    EXPECT_EQ(count(result.text, "Passed"), 11u);
    EXPECT_EQ(count(result.text, "Stopping test"), 0u);
}

TEST_P(Faults, OfOneThreadEndTheTestForAll) {
    const FaultyTest faulty(test(), 5, FaultyTest::Fault::product, 3);
    const StressReport report = run_one(with_test(stress_tests()[GetParam()], &faulty),
                                        small_settings(3, 2 * mebibyte, ~std::uint64_t{0}));
    EXPECT_EQ(report.errors, 1u);
    EXPECT_GE(report.products, 6u);
}

TEST_P(Faults, OfAnOperandAreFoundToo) {
    const FaultyTest faulty(test(), 3, FaultyTest::Fault::operand, 1000);
    StressSettings settings = small_settings(2, mebibyte, ~std::uint64_t{0});
    settings.mode = StressMode::global;
    const StressReport report = run_one(with_test(stress_tests()[GetParam()], &faulty), settings);
    EXPECT_EQ(report.errors, 1u);
}

TEST_P(Faults, ThatTheMultiplicationFindsItself) {
    const FaultyTest faulty(test(), 2, FaultyTest::Fault::exception);
    const StressReport report =
        run_one(with_test(stress_tests()[GetParam()], &faulty), small_settings(1, mebibyte, 100));
    EXPECT_EQ(report.errors, 1u);
    EXPECT_EQ(report.products, 3u);
}

}  // namespace
}  // namespace kelvara
