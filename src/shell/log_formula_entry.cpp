#include "constants/log_generator.h"
#include "shell/entry_points.h"

namespace kelvara {

void run_log_formula_generator() {
    run_log_formula_screen();
}

}  // namespace kelvara
