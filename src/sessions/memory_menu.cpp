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

void print_sizes(const RamSettings& settings) {
    constexpr std::uint64_t column = 30;
    const std::unique_ptr<RamComputation> computation = settings.make_computation();
    const MemoryPlan plan =
        plan_memory(*computation, settings.decimal_digits(), settings.hexadecimal_digits());
    console::println("Memory Settings\n", 'P');
    console::print_column_separated_bytes(column, "    Twiddle Factor Tables", plan.twiddles, 'G');
    console::print_column_separated_bytes(column, "    Working Memory", plan.working, 'G');
    console::println("    " + std::string(40, '-'), 'w');
    console::print_column_separated_bytes(column, "    Total Memory", plan.total(), 'Y');
    console::newline();
}

// The highest option.
std::int64_t print_options(const RamSettings& settings) {
    console::println("Options:\n", 'w');
    console::println("   1    Adjust Total Memory (not available in this mode)", 'w');
    qmp::menu::print_option("   2    Memory Allocator:", settings.allocator().get_display_name(), 'T');
    const std::uint64_t highest = settings.allocator().print_menu_options();
    console::println("   0    Done!", 'w');
    console::newline();
    return static_cast<std::int64_t>(highest);
}

}  // namespace

void edit_memory(RamSettings& settings) {
    for (;;) {
        print_sizes(settings);
        const std::int64_t highest = print_options(settings);
        const std::int64_t option = console::read_int_in_range("option: ", 0, highest, 'T');
        console::newline();
        switch (option) {
            case 0:
                return;
            case 1:
                break;
            case 2:
                settings.set_allocator(qmp::select_allocator());
                break;
            default:
                settings.allocator().handle_menu_option(static_cast<std::uint64_t>(option));
        }
    }
}

}  // namespace kelvara
