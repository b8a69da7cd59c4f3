#include "sessions/mode_menu.h"

#include <cstdint>
#include <memory>
#include <string>

#include "console/console.h"
#include "console/format.h"
#include "console/input.h"
#include "errors/exception.h"
#include "platform/privileges.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

// The columns of the table, from the line's start and from the memory's.
constexpr std::uint64_t memory_column = 28;
constexpr std::uint64_t disk_column = 12;

// What the computation takes in memory, or why nobody knows.
void print_ram_only(const ComputationSettings& settings) {
    const char* label = "1      Ram Only";
    std::unique_ptr<RamComputation> computation;
    try {
        computation = settings.constant().make_ram_computation(settings.task_decomposition());
    } catch (const qmp::InvalidParametersException& exception) {
        console::print_column_line(memory_column, label, exception.message(), 'y');
        return;
    }
    std::string estimates = console::format_bytes(computation->memory_estimate());
    estimates.resize(disk_column, ' ');
    estimates += console::format_bytes(0);
    console::print_column_line(memory_column, label, estimates, 'Y');
}

void print_notes() {
    console::println("*Disk usage varies with the amount of memory that is being used.");
    console::println("More memory usually means more disk usage. The value shown here is for");
    console::println("the lowest possible amount of working memory.");
    console::newline();
    console::println("Memory and disk usage estimates are provable upper-bounds for what they");
    console::println("are measuring. But they do not include unmeasureable overheads such as");
    console::println("run-time libraries, bookkeeping, OS system memory, etc...");
    console::newline();
    console::println("Disk usage estimates is for the amount of logical data. If redundent");
    console::println("RAID is involved, then the disk requirement will scale up accordingly.");
    console::newline();
}

}  // namespace

void ask_mode(CustomSettings& settings) {
    console::println("Select a Mode:\n", 'w');
    console::println("Option      Mode            Memory      Disk Memory\n");
    print_ram_only(settings.current());
    console::print_column_line(memory_column, "2      Swap Mode         >", SwapSettings::unavailable, 'y');
    console::newline();
    print_notes();
    const std::int64_t option = console::read_int_in_range("option: ", 1, 2, 'T');
    settings.set_mode(option == 2 ? ComputationMode::swap : ComputationMode::ram_only);
    if (option == 2) qmp::warn_without_swap_privileges();
}

}  // namespace kelvara
