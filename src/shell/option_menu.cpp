#include "shell/option_menu.h"

#include <cstdint>
#include <string_view>

#include "console/input.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

void print_numbered(std::uint64_t number, std::string_view name, console::Colour colour) {
    console::print_right(3, std::to_string(number), colour);
    console::println("         " + std::string(name));
}

bool run_entry(const OptionMenuEntry& entry) {
    if (entry.test) return entry.test();
    entry.action();
    return true;
}

void run_all_entries(const OptionMenu& menu) {
    for (const OptionMenuEntry& entry : menu.entries) {
        console::println(entry.name, 'P');
        console::reset_color();
        if (!run_entry(entry)) {
            console::print_warning("Tests Failed");
            console::pause();
        }
        console::newline();
    }
}

}  // namespace

void show_option_menu(const OptionMenu& menu, bool run_all) {
    console::println(menu.title, 'P');
    console::println("", 'w');
    std::uint64_t number = 0;
    if (run_all) print_numbered(number++, "Run All", 'G');
    for (const OptionMenuEntry& entry : menu.entries) print_numbered(number++, entry.name, entry.colour);
    console::println("", 'w');
    const std::int64_t choice =
        console::read_int_in_range("option: ", 0, static_cast<std::int64_t>(number) - 1, 'T');
    console::newline();

    if (run_all && choice == 0) return run_all_entries(menu);
    run_entry(menu.entries.at(static_cast<std::size_t>(choice) - (run_all ? 1 : 0)));
}

}  // namespace kelvara
