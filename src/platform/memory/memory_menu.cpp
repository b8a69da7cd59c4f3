#include "platform/memory/memory_menu.h"

#include <cstdint>

#include "console/console.h"
#include "console/input.h"
#include "platform/memory/registry.h"
#include "platform/menu_layout.h"

namespace qmp {
namespace {

// The highest option.
std::int64_t show(MemoryMenu& menu) {
    menu.print_sizes();
    console::println("Options:\n", 'w');
    console::println(menu.adjust_option(), 'w');
    menu::print_option("   2    Memory Allocator:", menu.allocator().get_display_name(), 'T');
    const std::uint64_t highest = menu.allocator().print_menu_options();
    console::println("   0    Done!", 'w');
    console::newline();
    menu.print_advice();
    return static_cast<std::int64_t>(highest);
}

}  // namespace

void edit_memory(MemoryMenu& menu) {
    for (;;) {
        const std::int64_t highest = show(menu);
        const std::int64_t option = console::read_int_in_range("option: ", 0, highest, 'T');
        console::newline();
        switch (option) {
            case 0:
                return;
            case 1:
                menu.adjust();
                break;
            case 2:
                menu.set_allocator(select_allocator());
                break;
            default:
                menu.allocator().handle_menu_option(static_cast<std::uint64_t>(option));
        }
    }
}

}  // namespace qmp
