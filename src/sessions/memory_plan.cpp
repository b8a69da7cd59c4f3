#include "sessions/memory_plan.h"

#include <algorithm>

#include "multiply/twiddle_set.h"
#include "radix/output_driver.h"

namespace kelvara {

MemoryPlan plan_memory(const RamComputation& computation, std::uint64_t decimal_digits,
                       std::uint64_t hexadecimal_digits) {
    const std::uint64_t tasks = computation.tasks();
    MemoryPlan plan;
    plan.working =
        std::max({computation.working_bytes(), qmp::decimal_output_bytes(decimal_digits, tasks),
                  hexadecimal_digits > 0 ? qmp::hexadecimal_output_bytes(hexadecimal_digits, tasks) : 0});
    plan.largest_product =
        std::max(computation.largest_product(), qmp::decimal_output_largest_product(decimal_digits));
    plan.twiddles = std::max<std::uint64_t>(qmp::TwiddleSet::bytes_needed(plan.largest_product), 64);
    return plan;
}

}  // namespace kelvara
