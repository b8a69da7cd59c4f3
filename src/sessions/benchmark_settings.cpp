#include "sessions/benchmark_settings.h"

#include "console/console.h"
#include "errors/exception.h"
#include "platform/startup_state.h"
#include "sessions/memory_plan.h"
#include "sessions/ram_session.h"

namespace kelvara {

namespace console = qmp::console;

BenchmarkSettings::BenchmarkSettings() {
    computation_.set_default_folder(program_directory());
    computation_.success_text = "Benchmark Successful. The digits appear to be OK.";
}

void BenchmarkSettings::set_size(const BenchmarkSize& size) {
    computation_.set_decimal_digits(size.digits);
    size_ = &size;
}

std::uint64_t BenchmarkSettings::memory_needed(const BenchmarkSize& size) const {
    RamSettings other;
    other.set_task_decomposition(computation_.task_decomposition());
    other.set_decimal_digits(size.digits);
    const auto computation = other.constant().make_ram_computation(other.task_decomposition());
    return plan_memory(*computation, other.decimal_digits(), other.hexadecimal_digits()).total();
}

void BenchmarkSettings::run() {
    if (!size_) throw qmp::InvalidParametersException("", "No benchmark size selected.");
    // A framework is of no use to a single task.
    if (computation_.task_decomposition() < 2) computation_.set_framework("none");
    console::newline();
    computation_.check();
    console::newline();
    RamSession(computation_).run();
}

}  // namespace kelvara
