#include "platform/parallel/menus.h"

#include "console/console.h"
#include "console/format.h"
#include "console/input.h"
#include "platform/menu_layout.h"
#include "platform/parallel/registry.h"

namespace qmp {
namespace {

void print_core_count(std::string_view before) {
    console::write(before, 'w');
    console::write(std::to_string(default_task_decomposition()), 'G');
    console::println(" logical cores.", 'w');
}

void print_parallelization_menu_head() {
    console::println("\n\nParallelization Mode:\n", 'P');
    console::println("The purpose of this feature is to test the performance of various parallel", 'w');
    console::println("computing frameworks.");
    console::newline();
    console::println("If you don't know what you're doing, you probably don't want to mess with");
    console::println("these settings. The default settings are auto-tuned for your system which");
    print_core_count("has ");
    console::newline();
    console::println("Current Settings: (select option # to change setting)\n");
}

std::uint64_t print_parallelization_options(std::uint64_t task_decomposition,
                                            const BasicParallelizer& framework) {
    print_core_count("   1    Restore defaults for ");
    console::newline();
    menu::print_option("   2    Task Decomposition:", std::to_string(task_decomposition), 'Y');
    menu::print_option("   3    Framework:", framework.get_display_name(), 'T');
    const std::uint64_t highest = framework.print_menu_options();
    console::println("   0    Done!", 'w');
    console::newline();
    return highest;
}

}  // namespace

std::unique_ptr<BasicParallelizer> select_parallelizer() {
    return make_parallelizer_by_number(
        menu::choose("Select a Parallel Framework:", parallelizer_display_names()));
}

std::uint64_t ask_task_decomposition() {
    console::println("\n\nTarget Task Decomposition", 'G');
    console::println("", 'w');
    console::println("In order to parallelize a task, it must be decomposed to smaller tasks.");
    console::println("However, decomposing tasks incurs CPU and memory overhead.");
    console::newline();
    console::println("  - With fewer tasks, you have less overhead, but you may not achieve high");
    console::println("    utilization of the processor cores.");
    console::println("  - With more tasks, you have more overhead, but better CPU utilization.");
    console::newline();
    console::println("At minimum value, this should be at least the # of logical cores. But it may");
    console::println("be optimal to go even higher. This is known as \"over-decomposition\".");
    console::newline();
    for (;;) {
        console::write("Task Decomposition: ", 'w');
        const std::int64_t tasks = console::read_int('Y');
        if (tasks >= 1 && tasks <= static_cast<std::int64_t>(largest_task_decomposition)) {
            return static_cast<std::uint64_t>(tasks);
        }
        console::write("\nPlease choose a number between 1 and ", 'w');
        console::write(console::format_separated(largest_task_decomposition), 'Y');
        console::println(".", 'w');
    }
}

void edit_parallelization(std::uint64_t& task_decomposition, std::unique_ptr<BasicParallelizer>& framework) {
    for (;;) {
        print_parallelization_menu_head();
        const std::uint64_t highest = print_parallelization_options(task_decomposition, *framework);
        const std::int64_t option =
            console::read_int_in_range("option: ", 0, static_cast<std::int64_t>(highest), 'T');
        switch (option) {
            case 0:
                return;
            case 1:
                framework = make_default_parallelizer();
                task_decomposition = default_task_decomposition();
                break;
            case 2:
                task_decomposition = ask_task_decomposition();
                break;
            case 3:
                framework = select_parallelizer();
                break;
            default:
                framework->handle_menu_option(static_cast<std::uint64_t>(option));
        }
    }
}

}  // namespace qmp
