#include "stress/stress_menu.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "console/console.h"
#include "console/format.h"
#include "console/input.h"
#include "console/labels.h"
#include "platform/memory/memory_menu.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

constexpr std::uint64_t value_column = 24;
constexpr std::uint64_t name_column = 22;
constexpr std::uint64_t components_column = 33;
constexpr std::int64_t first_test = 6;

struct QuickSet {
    const char* name;
    bool (*enables)(const StressTestEntry& entry);
};
constexpr QuickSet quick_sets[] = {
    {"CPU-intensive tests only", [](const StressTestEntry& entry) { return entry.cpu_intensive; }},
    {"Memory-intensive tests only", [](const StressTestEntry& entry) { return entry.memory_intensive; }},
    {"Enable All", [](const StressTestEntry&) { return true; }},
    {"Disable All", [](const StressTestEntry&) { return false; }},
};

const char* mode_text(StressMode mode) {
    return mode == StressMode::local ? "Local - Thread-local memory. Pin threads to cores."
                                     : "Global - Shared memory, no thread pinning.";
}

void print_settings(const StressSettings& settings) {
    console::print_column_line(value_column, "   1  Mode:", mode_text(settings.mode), 'R');
    console::newline();
    console::print_column_separated(value_column, "   2  Threads:", settings.threads, 'T');
    console::print_column(value_column, "   3  Memory:", console::format_bytes(settings.memory), 'Y');
    if (settings.mode == StressMode::local) {
        console::write("  ( ", 'w');
        console::write(console::format_bytes(settings.memory_per_thread()), 'Y');
        console::write(" per thread )", 'w');
    }
    console::println("\n");
    console::print_column(value_column,
                          "   4  Time per Test:", console::format_separated(settings.seconds_per_test), 'G');
    console::println(" seconds", 'w');
    console::print_column_line(value_column,
                               "   5  Stop on Error:", settings.stop_on_error ? "Enabled" : "Disabled",
                               settings.stop_on_error ? 'G' : 'R');
    console::newline();
}

std::string padded(std::string_view text, std::uint64_t columns) {
    std::string result(text);
    if (result.size() < columns) result.resize(columns, ' ');
    return result;
}

void print_number(std::int64_t number) {
    console::print_right(4, std::to_string(number), 'w');
    console::write("  ");
}

void print_tests(const StressSettings& settings, std::span<const StressTestEntry> tests) {
    console::println("   #  " + padded("Algorithm to Test", name_column) + "   " +
                         padded("Primary Components", components_column) + "Enable Test?\n",
                     'w');
    for (std::size_t i = 0; i < tests.size(); ++i) {
        const StressTestEntry& entry = tests[i];
        print_number(first_test + static_cast<std::int64_t>(i));
        console::write(padded(entry.name, name_column), entry.test ? 'T' : 't');
        console::write(" : ", 'w');
        console::write(padded(entry.components, components_column));
        if (!entry.test) {
            console::println("Unavailable", 'r');
        } else if (settings.enabled[i]) {
            console::println("Enabled", 'G');
        } else {
            console::println("Disabled", 'R');
        }
    }
    console::println("", 'w');
}

void print_quick_sets(std::int64_t first) {
    for (const QuickSet& set : quick_sets) {
        print_number(first++);
        console::write("Quick Set: ");
        console::println(set.name, 'Y');
    }
    console::println("", 'w');
}

// What the tests share out between them, and where it comes from.
class StressMemoryMenu final : public qmp::MemoryMenu {
  public:
    explicit StressMemoryMenu(StressSettings& settings) : settings_(settings) {}

    void print_sizes() const override {
        console::println("Memory Settings\n", 'P');
        console::print_column_separated_bytes(30, "    Working Memory", settings_.memory, 'G');
        console::newline();
    }
    const char* adjust_option() const override { return "   1    Adjust Working Memory"; }
    void adjust() override {
        settings_.memory = console::ask_memory_cap();
        console::newline();
    }
    qmp::BasicAllocator& allocator() override { return *settings_.allocator; }
    void set_allocator(std::unique_ptr<qmp::BasicAllocator> allocator) override {
        settings_.allocator = std::move(allocator);
    }

  private:
    StressSettings& settings_;
};

std::uint64_t ask(std::string_view prompt, std::int64_t low, std::int64_t high) {
    const std::int64_t answer = console::read_int_in_range(prompt, low, high, 'T');
    console::newline();
    return static_cast<std::uint64_t>(answer);
}

void apply(StressSettings& settings, std::span<const StressTestEntry> tests, std::int64_t option) {
    const auto index = static_cast<std::size_t>(option - first_test);
    if (index < tests.size()) {
        settings.enabled[index] = !settings.enabled[index];
        return;
    }
    const QuickSet& set = quick_sets[index - tests.size()];
    for (std::size_t i = 0; i < tests.size(); ++i) settings.enabled[i] = set.enables(tests[i]);
}

void act(StressSettings& settings, std::span<const StressTestEntry> tests, std::int64_t option) {
    switch (option) {
        case 1:
            settings.mode = settings.mode == StressMode::local ? StressMode::global : StressMode::local;
            break;
        case 2:
            settings.threads = ask("Threads = ", 1, StressSettings::most_threads);
            break;
        case 3: {
            StressMemoryMenu menu(settings);
            qmp::edit_memory(menu);
            break;
        }
        case 4:
            settings.seconds_per_test = ask("Time (seconds) = ", 0, std::numeric_limits<std::int64_t>::max());
            break;
        case 5:
            settings.stop_on_error = !settings.stop_on_error;
            break;
        default:
            apply(settings, tests, option);
    }
}

}  // namespace

void edit_stress_settings(StressSettings& settings, std::span<const StressTestEntry> tests) {
    const std::int64_t first_quick_set = first_test + static_cast<std::int64_t>(tests.size());
    const std::int64_t last = first_quick_set + static_cast<std::int64_t>(std::size(quick_sets)) - 1;
    for (;;) {
        console::println("\nComponent Stress Tester\n", 'P');
        print_settings(settings);
        print_tests(settings, tests);
        print_quick_sets(first_quick_set);
        const bool can_start = settings.any_enabled();
        if (can_start) {
            console::println("   0  Start Stress-Testing!\n", 'G');
        } else {
            console::println("      You must select at least one test.\n", 'R');
        }
        const std::int64_t option = console::read_int_in_range("option: ", can_start ? 0 : 1, last, 'T');
        console::newline();
        if (option == 0) return;
        act(settings, tests, option);
    }
}

}  // namespace kelvara
