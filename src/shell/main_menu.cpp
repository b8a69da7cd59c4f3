#include "shell/main_menu.h"

#include <iterator>

#include "console/console.h"
#include "console/input.h"
#include "platform/features_screen.h"
#include "shell/about_screen.h"
#include "shell/compilation_options.h"
#include "shell/entry_points.h"
#include "shell/option_menu.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

void print_entries() {
    console::println("  0         Benchmark Pi  (all in ram)", 'T');
    console::println("  1         Component Stress Tester");
    console::println("  2         Run I/O Performance Analysis");
    console::newline();
    console::println("  3         Custom Compute a Constant", 'Y');
    console::println("                -   Compute other constants (e, Golden Ratio, etc...)");
    console::println("                -   Choose your own settings (use disk for large computations)");
    console::newline();
    console::println("  4         BBP Digit Extractor for Pi", 'G');
    console::println("  5         Ordalis");
    console::newline();
    console::println("  6         Advanced Options", 't');
    console::println("  7         About");
    console::println("\n", 'w');
}

// In the order of their numbers.
constexpr void (*choices[])() = {
    run_benchmark_menu, run_stress_test_menu, run_io_analysis_menu,      run_custom_compute_menu,
    run_bbp_extractor,  run_ordalis,          run_advanced_options_menu, show_about_screen,
};

const OptionMenu advanced_options = {
    "Advanced Options",
    {
        {"Benchmark Validator", 'T', run_benchmark_validator, {}},
        {"Log(n) Formula Generator", 'T', run_log_formula_generator, {}},
        {"Hardware Features", 'T', [] { qmp::print_features(); }, {}},
        {"Compilation Options", 'T', show_compilation_options, {}},
        {"Test Swap Multiply", 'Y', run_swap_multiply_test, {}},
    },
};

}  // namespace

void run_main_menu() {
    print_banner();
    print_entries();
    console::println("Enter your choice:");
    const std::int64_t choice =
        console::read_int_in_range("option: ", 0, static_cast<std::int64_t>(std::size(choices)) - 1, 'T');
    console::newline();
    choices[choice]();
}

void run_advanced_options_menu() {
    show_option_menu(advanced_options, false);
}

}  // namespace kelvara
