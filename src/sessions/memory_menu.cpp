#include "sessions/memory_menu.h"

#include <cstdint>
#include <memory>
#include <string>

#include "console/console.h"
#include "console/input.h"
#include "console/labels.h"
#include "platform/memory/registry.h"
#include "platform/menu_layout.h"
#include "sessions/memory_plan.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

constexpr std::uint64_t column = 30;

void print_rule() {
    console::println("    " + std::string(40, '-'), 'w');
}

void print_unavailable(const char* label) {
    console::print_column_line(column, label, SwapSettings::unavailable, 'y');
}

void print_sizes(const RamSettings& settings) {
    const std::unique_ptr<RamComputation> computation = settings.make_computation();
    const MemoryPlan plan =
        plan_memory(*computation, settings.decimal_digits(), settings.hexadecimal_digits());
    console::println("Memory Settings\n", 'P');
    console::print_column_separated_bytes(column, "    Twiddle Factor Tables", plan.twiddles, 'G');
    console::print_column_separated_bytes(column, "    Working Memory", plan.working, 'G');
    print_rule();
    console::print_column_separated_bytes(column, "    Total Memory", plan.total(), 'Y');
    console::newline();
}

void print_sizes(const SwapSettings& settings) {
    console::println("Memory Settings\n", 'P');
    print_unavailable("    Twiddle Factor Tables");
    console::print_column_separated_bytes(column, "    Disk I/O Buffers", settings.raid().buffer_total(),
                                          'G');
    print_unavailable("    Minimum Working Memory");
    print_rule();
    print_unavailable("    Minimum Total Memory");
    console::newline();
    print_unavailable("    Current Working Memory");
    console::print_column_separated_bytes(column, "    Current Total Memory", settings.memory_cap(), 'Y');
    console::newline();
}

// The highest option.
std::int64_t print_options(const ComputationSettings& settings, const char* first) {
    console::println("Options:\n", 'w');
    console::println(first, 'w');
    qmp::menu::print_option("   2    Memory Allocator:", settings.allocator().get_display_name(), 'T');
    const std::uint64_t highest = settings.allocator().print_menu_options();
    console::println("   0    Done!", 'w');
    console::newline();
    return static_cast<std::int64_t>(highest);
}

std::int64_t show(const RamSettings& settings) {
    print_sizes(settings);
    return print_options(settings, "   1    Adjust Total Memory (not available in this mode)");
}

std::int64_t show(const SwapSettings& settings) {
    print_sizes(settings);
    const std::int64_t highest = print_options(settings, "   1    Adjust Total Memory");
    console::println("In Swap Mode, memory is used as a cache for disk. So it's usually best");
    console::println("to use as much as possible without running out of memory.");
    console::newline();
    return highest;
}

void adjust(RamSettings&) {}

void adjust(SwapSettings& settings) {
    settings.set_memory_cap(console::ask_memory_cap());
    console::newline();
}

template <typename Settings>
void edit(Settings& settings) {
    for (;;) {
        const std::int64_t highest = show(settings);
        const std::int64_t option = console::read_int_in_range("option: ", 0, highest, 'T');
        console::newline();
        switch (option) {
            case 0:
                return;
            case 1:
                adjust(settings);
                break;
            case 2:
                settings.set_allocator(qmp::select_allocator());
                break;
            default:
                settings.allocator().handle_menu_option(static_cast<std::uint64_t>(option));
        }
    }
}

}  // namespace

void edit_memory(RamSettings& settings) {
    edit(settings);
}

void edit_memory(SwapSettings& settings) {
    edit(settings);
}

}  // namespace kelvara
