// The lines of the custom-compute menu that are each mode's own, and what they do.
#include <memory>
#include <optional>
#include <string>

#include "console/console.h"
#include "console/format.h"
#include "console/labels.h"
#include "errors/exception.h"
#include "sessions/memory_menu.h"
#include "sessions/output_files.h"
#include "sessions/ram_settings.h"
#include "sessions/swap_settings.h"
#include "swap/raid_menu.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

// Where the values of the menu stand.
constexpr std::uint64_t column = 30;

// What the numbers take, and the digit files.
void print_disk_needed(const ComputationSettings& settings, const std::string& numbers) {
    console::print_column(column, "        Disk Needed", numbers, 'y');
    console::write("  +  ", 'w');
    console::write(console::format_separated_bytes(output_bytes(settings)), 'P');
    console::println(" for output", 'w');
    console::newline();
}

}  // namespace

std::optional<std::uint64_t> RamSettings::print_menu_options() const {
    std::unique_ptr<RamComputation> computation;
    try {
        computation = make_computation();
    } catch (const qmp::InvalidParametersException& exception) {
        console::println("        " + exception.message(), 'R');
        console::println("", 'w');
        return std::nullopt;
    }
    const std::uint64_t memory = computation->memory_estimate();
    console::print_column_separated_bytes(column, "  9     Memory Needed", memory, 'Y');
    print_disk_needed(*this, console::format_separated_bytes(0));
    return memory;
}

void RamSettings::handle_menu_option(std::int64_t option) {
    if (option == 9) edit_memory(*this);
}

std::optional<std::uint64_t> SwapSettings::print_menu_options() const {
    const bool is_set = !raid_.groups().empty();
    console::print_column_line(column, "  9     Swap Configuration:", raid_description(), is_set ? 'G' : 'g');
    console::print_column(column, "  10     Bytes/Seek", console::format_separated_bytes(bytes_per_seek()),
                          'G');
    console::println(" for entire drive array", 'w');
    console::print_column_separated_bytes(column, "  11     Memory Needed", memory_cap_, 'Y');
    print_disk_needed(*this, unavailable);
    return memory_cap_;
}

void SwapSettings::handle_menu_option(std::int64_t option) {
    if (option == 9) {
        qmp::edit_raid_settings(raid_, std::nullopt);
        refresh();
    }
    if (option == 10) qmp::ask_bytes_per_seek(bytes_per_seek_, raid_.default_bytes_per_seek());
    if (option == 11) edit_memory(*this);
}

}  // namespace kelvara
