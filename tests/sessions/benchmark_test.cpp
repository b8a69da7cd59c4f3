#include "sessions/benchmark_settings.h"

#include <gtest/gtest.h>

#include "console/format.h"
#include "errors/exception.h"
#include "sessions/benchmark_menu.h"
#include "support/console.h"

namespace kelvara {
namespace {

using kelvara_test::printed_by;

constexpr std::uint64_t available_memory = std::uint64_t{3} << 30;

struct Answered {
    std::string screen;
    std::uint64_t digits = 0;
    std::uint64_t tasks = 0;
};

// The menu of a machine with so many threads, answered line by line.
Answered answer(const std::string& answers, std::uint64_t tasks) {
    BenchmarkSettings settings;
    settings.computation().set_task_decomposition(tasks);
    Answered result;
    result.screen = printed_by([&] {
        const kelvara_test::FedInput input(answers);
        ask_benchmark(settings, available_memory);
    });
    result.digits = settings.computation().decimal_digits();
    result.tasks = settings.computation().task_decomposition();
    EXPECT_EQ(settings.size()->digits, result.digits);
    return result;
}

std::string memory_of(const char* size, std::uint64_t tasks) {
    BenchmarkSettings settings;
    settings.computation().set_task_decomposition(tasks);
    return qmp::console::format_separated_bytes(settings.memory_needed(*find_benchmark_size(size)));
}

TEST(BenchmarkMenu, AsksForTypeAndSize) {
    const Answered answered = answer("1\n0\n", 4);
    EXPECT_EQ(answered.digits, 25'000'000u);
    EXPECT_EQ(answered.tasks, 4u);
    const std::string start =
        "Benchmark Pi:\n"
        "\n"
        "Select a Benchmark Type:\n"
        "\n"
        "  0     Single-Threaded\n"
        "  1     Multi-Threaded\n"
        "\n"
        "option: "
        "\n"
        "Available Memory:   3.00 GiB\n"
        "\n"
        "Option      Decimal Digits          Approx. Memory Needed\n"
        "  0             25,000,000                " +
        memory_of("25m", 4) +
        "\n"
        "  1             50,000,000                " +
        memory_of("50m", 4) + "\n";
    const std::string end = "\n 15      2,500,000,000,000                " + memory_of("2.5t", 4) +
                            "\n"
                            " 16         I prefer SuperPi sizes... (1M, 2M, 4M...)\n"
                            "\n"
                            "option: ";
    EXPECT_TRUE(answered.screen.starts_with(start)) << answered.screen;
    EXPECT_TRUE(answered.screen.ends_with(end)) << answered.screen;
}

TEST(BenchmarkMenu, SingleThreadedIsASingleTask) {
    const Answered answered = answer("0\n3\n", 4);
    EXPECT_EQ(answered.digits, 250'000'000u);
    EXPECT_EQ(answered.tasks, 1u);
    EXPECT_NE(answered.screen.find(memory_of("25m", 1)), std::string::npos);
}

TEST(BenchmarkMenu, AMachineOfOneThreadIsNotAskedForTheType) {
    const Answered answered = answer("15\n", 1);
    EXPECT_EQ(answered.digits, 2'500'000'000'000u);
    EXPECT_TRUE(answered.screen.starts_with("Benchmark Pi:\n\n\nAvailable Memory:   ")) << answered.screen;
    EXPECT_EQ(answered.screen.find("Select a Benchmark Type:"), std::string::npos);
}

TEST(BenchmarkMenu, PowersOfTwoStandBehindTheLastOption) {
    const Answered first = answer("16\n0\n", 1);
    EXPECT_EQ(first.digits, std::uint64_t{1} << 20);
    EXPECT_NE(first.screen.find("\n  0              1,048,576                " + memory_of("1M", 1) + "\n"),
              std::string::npos)
        << first.screen;
    EXPECT_TRUE(first.screen.ends_with("\n 17        137,438,953,472                " + memory_of("128G", 1) +
                                       "\n\noption: "))
        << first.screen;
    EXPECT_EQ(answer("16\n17\n", 1).digits, std::uint64_t{1} << 37);
}

TEST(BenchmarkMenu, AsksAgainUntilTheAnswerIsInRange) {
    EXPECT_EQ(answer("2\n-1\n99999999999999999999999\n1\n17\n-5\n1\n", 2).digits, 50'000'000u);
    EXPECT_EQ(answer("16\n18\n-1\n1\n", 1).digits, std::uint64_t{2} << 20);
    // Nothing, and letters, are 0.
    EXPECT_EQ(answer("\n", 1).digits, 25'000'000u);
    EXPECT_EQ(answer("letters\n", 1).digits, 25'000'000u);
}

TEST(BenchmarkSettings, MemoryGrowsWithTheSize) {
    const BenchmarkSettings settings;
    for (const auto& sizes : {decimal_benchmark_sizes(), binary_benchmark_sizes()}) {
        for (std::size_t i = 1; i < sizes.size(); ++i) {
            EXPECT_GT(settings.memory_needed(sizes[i]), settings.memory_needed(sizes[i - 1]))
                << sizes[i].name;
        }
    }
}

TEST(BenchmarkSettings, IsPiByItsDefaultAlgorithm) {
    BenchmarkSettings settings;
    EXPECT_EQ(settings.computation().constant().short_name(), "Pi");
    EXPECT_EQ(settings.computation().constant().algorithm(), 0u);
    EXPECT_EQ(settings.size(), nullptr);
    settings.set_size(*find_benchmark_size("1M"));
    EXPECT_EQ(settings.size(), find_benchmark_size("1M"));
    EXPECT_EQ(settings.computation().decimal_digits(), std::uint64_t{1} << 20);
    EXPECT_GT(settings.computation().hexadecimal_digits(), 0u);
}

TEST(BenchmarkSettings, WithoutASizeNothingRuns) {
    try {
        BenchmarkSettings().run();
        FAIL();
    } catch (const qmp::InvalidParametersException& exception) {
        EXPECT_EQ(exception.message(), "No benchmark size selected.");
    }
}

}  // namespace
}  // namespace kelvara
