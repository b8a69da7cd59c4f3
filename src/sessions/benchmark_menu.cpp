#include "sessions/benchmark_menu.h"

#include <string>

#include "console/console.h"
#include "console/format.h"
#include "console/input.h"
#include "platform/os/memory.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

constexpr const char* option_prompt = "option: ";
constexpr std::uint64_t option_width = 3;
constexpr std::uint64_t digits_width = 23;

void print_option(std::uint64_t option, console::Colour colour) {
    console::print_right(option_width, console::format_int(option), colour);
}

// Choice 0 leaves a single task.
void ask_type(BenchmarkSettings& settings) {
    console::println("Select a Benchmark Type:");
    console::newline();
    console::println("  0     Single-Threaded", 'G');
    console::println("  1     Multi-Threaded", 'G');
    console::reset_color();
    console::newline();
    if (console::read_int_in_range(option_prompt, 0, 1, 'T') == 0) {
        settings.computation().set_task_decomposition(1);
    }
}

void print_sizes(const BenchmarkSettings& settings, std::span<const BenchmarkSize> sizes,
                 std::uint64_t available_memory) {
    console::newline();
    console::println("Available Memory:   " + console::format_bytes(available_memory));
    console::newline();
    console::println("Option      Decimal Digits          Approx. Memory Needed");
    for (std::uint64_t option = 0; option < sizes.size(); ++option) {
        print_option(option, 'G');
        console::print_right(digits_width, console::format_separated(sizes[option].digits), 'G');
        console::reset_color();
        console::println(std::string(16, ' ') +
                         console::format_separated_bytes(settings.memory_needed(sizes[option])));
    }
}

const BenchmarkSize& ask_binary_size(const BenchmarkSettings& settings, std::uint64_t available_memory) {
    const std::span<const BenchmarkSize> sizes = binary_benchmark_sizes();
    print_sizes(settings, sizes, available_memory);
    console::newline();
    const auto last = static_cast<std::int64_t>(sizes.size()) - 1;
    return sizes[static_cast<std::size_t>(console::read_int_in_range(option_prompt, 0, last, 'T'))];
}

const BenchmarkSize& ask_size(const BenchmarkSettings& settings, std::uint64_t available_memory) {
    const std::span<const BenchmarkSize> sizes = decimal_benchmark_sizes();
    print_sizes(settings, sizes, available_memory);
    print_option(sizes.size(), 'T');
    console::println(std::string(9, ' ') + "I prefer SuperPi sizes... (1M, 2M, 4M...)");
    console::reset_color();
    console::newline();
    const auto last = static_cast<std::int64_t>(sizes.size());
    const std::int64_t option = console::read_int_in_range(option_prompt, 0, last, 'T');
    return option == last ? ask_binary_size(settings, available_memory)
                          : sizes[static_cast<std::size_t>(option)];
}

}  // namespace

void ask_benchmark(BenchmarkSettings& settings, std::uint64_t available_memory) {
    console::println("Benchmark Pi:", 'P');
    console::newline();
    console::reset_color();
    if (settings.computation().task_decomposition() > 1) ask_type(settings);
    settings.set_size(ask_size(settings, available_memory));
}

void run_benchmark_menu(BenchmarkSettings& settings) {
    ask_benchmark(settings, qmp::os::available_physical_memory());
    settings.run();
}

}  // namespace kelvara
