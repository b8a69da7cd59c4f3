#include "platform/menu_layout.h"

#include "console/input.h"

namespace qmp::menu {

void print_option(std::string_view label, std::string_view value, console::Colour colour) {
    constexpr std::uint64_t value_column = 32;
    console::print_column_line(value_column, label, value, colour);
}

std::uint64_t choose(std::string_view title, std::span<const std::string> names) {
    console::println(title, 'P');
    console::println("", 'w');
    for (std::size_t i = 0; i < names.size(); ++i) {
        console::print_right(4, std::to_string(i), 'w');
        console::write("    ");
        console::println(names[i], 'T');
    }
    console::println("", 'w');
    const auto last = static_cast<std::int64_t>(names.size()) - 1;
    return static_cast<std::uint64_t>(console::read_int_in_range("option: ", 0, last, 'T'));
}

}  // namespace qmp::menu
