// What the menus and the actions start: one function for everything the program can do.
//
// Each runs from its first line on screen to its last and then returns; what goes wrong escapes as an
// exception that the program's guard prints. Functions that are not written yet stand in unavailable.cpp and
// answer with one exception that says so.
#pragma once

namespace kelvara {

class CommandLine;
struct Checkpoint;

// "Custom Compute a Constant", from default settings.
void run_custom_compute_menu();

// "Benchmark Pi:", from default settings.
void run_benchmark_menu();
void run_benchmark_validator();

// The menus; and the actions, which consume their keyword and the options that follow.
void run_stress_test_menu();
void run_stress_test_action(CommandLine& command_line);
void run_io_analysis_menu();
void run_io_benchmark_action(CommandLine& command_line);

void run_bbp_extractor();
void run_ordalis();
void run_log_formula_generator();
void run_swap_multiply_test();

// The computation of a checkpoint that was found at start, to its end.
void run_resumed_computation(const Checkpoint& checkpoint);

// The "config" action: consumes its keyword and runs a saved configuration.
void run_configuration_file(CommandLine& command_line);

}  // namespace kelvara
