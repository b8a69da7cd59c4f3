#include "sessions/benchmark_menu.h"
#include "sessions/validator.h"
#include "shell/entry_points.h"

namespace kelvara {

void run_benchmark_menu() {
    BenchmarkSettings settings;
    run_benchmark_menu(settings);
}

void run_benchmark_validator() {
    run_validator();
}

}  // namespace kelvara
