// The entry points that this build does not have yet. Whoever writes one takes it out of here.
#include <string>

#include "errors/exception.h"
#include "shell/entry_points.h"

namespace kelvara {
namespace {

[[noreturn]] void not_available(const std::string& what) {
    throw qmp::InvalidParametersException("", what + " is not available in this build yet.");
}

}  // namespace

void run_io_analysis_menu() {
    not_available("The I/O performance analysis");
}
void run_io_benchmark_action(CommandLine&) {
    run_io_analysis_menu();
}

void run_resumed_computation(const Checkpoint&) {
    not_available("Resuming a computation");
}

void run_swap_multiply_test() {
    not_available("The swap multiplication test");
}

}  // namespace kelvara
