#include "sessions/ram_session.h"

#include <algorithm>
#include <optional>

#include "console/console.h"
#include "console/format.h"
#include "constants/ram_computation.h"
#include "errors/exception.h"
#include "multiply/twiddle_set.h"
#include "numbers/compute_context.h"
#include "platform/local_time.h"
#include "platform/memory/region_allocator.h"
#include "platform/os/memory.h"
#include "platform/startup_state.h"
#include "sessions/output_files.h"
#include "sessions/report.h"
#include "sessions/session_progress.h"
#include "sessions/session_validation.h"
#include "sessions/validation_file.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

// Room for the allocation records, sentinels and alignment of the arrays carved from the block.
constexpr std::uint64_t working_memory_margin = 1'048'640;

std::uint64_t round_down_to_8(std::uint64_t bytes) {
    return bytes & ~std::uint64_t{7};
}

}  // namespace

struct RamSession::Memory {
    qmp::LargeHeap working;
    qmp::LargeHeap twiddles;
    std::optional<qmp::RegionAllocator> region;
    std::optional<qmp::TwiddleSet> twiddle_set;
};

void RamSession::warn_if_memory_is_short(std::uint64_t bytes) const {
    const std::uint64_t available =
        std::min(qmp::os::available_physical_memory(), std::uint64_t{0x6ffffffffffffff9});
    if (available == 0 || available >= bytes) return;
    console::print_warning(
        "Warning:\nThere is insufficient available memory to perform this operation.\n\nInsufficient memory "
        "may lead to virtual memory thrashing which can cause severe\nperformance degradation and/or system "
        "unresponsiveness.\n");
    console::pause();
    console::newline();
}

void RamSession::print_header(const RamComputation& computation) const {
    const Constant& constant = settings_.constant();
    constant.print_settings();
    console::newline();
    console::print_column_line(12, "Constant:", constant.full_name(), constant.colour());
    console::print_column_line(12, "Algorithm:", computation.long_name(), 'Y');
    console::newline();
    console::print_column_line(22, "Decimal Digits:", console::format_separated(settings_.decimal_digits()),
                               'G');
    if (settings_.hexadecimal_digits() == 0) {
        console::print_column_line(22, "Hexadecimal Digits:", "Disabled", 'g');
    } else {
        console::print_column_line(
            22, "Hexadecimal Digits:", console::format_separated(settings_.hexadecimal_digits()), 'G');
    }
    console::newline();
    console::print_column_line(22, "Computation Mode:", "Ram Only", 'R');
    console::print_column(22, "Multi-Threading:", "");
    settings_.framework().print_summary(settings_.task_decomposition());
    console::newline();
    console::print_column_line(22, "Memory Allocator:", settings_.allocator().get_display_name(), 'T');
    console::newline();
}

void RamSession::reserve(Memory& memory, const MemoryPlan& plan) {
    const qmp::ParallelContext parallel = settings_.parallel();
    record_.working_memory = round_down_to_8(plan.working + working_memory_margin);

    settings_.allocator().acquire_privileges();  // warns; the reservation does with what there is
    record_.log.append("Reserving Working Memory");
    qmp::CounterTimePoint step = qmp::now();
    memory.working = qmp::allocate_large_heap(settings_.allocator(), "Reserving Working Memory...     ",
                                              record_.working_memory, parallel);
    record_.working_memory_text = memory.working.description;
    if (reinterpret_cast<std::uintptr_t>(memory.working.block->base) % 8 != 0) {
        console::fatal_error("Alignment Error");
    }
    memory.region.emplace(memory.working.block->base, round_down_to_8(memory.working.block->size));
    record_.reserving_seconds = qmp::seconds_between(qmp::now(), step);
    record_.log.append("Reserving Working Memory: " + console::format_time(record_.reserving_seconds));

    record_.log.append("Constructing Twiddle Tables");
    step = qmp::now();
    memory.twiddles = qmp::allocate_large_heap(settings_.allocator(), "Constructing Twiddle Tables...  ",
                                               plan.twiddles, parallel);
    record_.twiddle_memory_text = memory.twiddles.description;
    memory.twiddle_set.emplace(memory.twiddles.block->base, memory.twiddles.block->size, plan.largest_product,
                               parallel);
    record_.twiddle_memory = plan.twiddles;
    record_.twiddle_seconds = qmp::seconds_between(qmp::now(), step);
    record_.log.append("Constructing Twiddle Tables: " + console::format_time(record_.twiddle_seconds));
    console::newline();
}

void RamSession::compute_and_write(Memory& memory, const RamComputation& computation) {
    SessionProgress progress(record_.log, observer_);
    const qmp::ComputeContext context{settings_.parallel(), &*memory.twiddle_set, &*memory.region, &progress};
    OutputFiles files(settings_, computation.short_name(), progress);

    console::println("Begin Computation:\n");
    record_.log.append("Begin Computation");
    record_.computing = qmp::cpu_now();
    const qmp::OwnedBigFloat value = computation.compute(context);
    record_.computed = qmp::cpu_now();
    console::newline();

    if (settings_.hexadecimal_digits() > 0) {
        record_.hexadecimal =
            qmp::write_hexadecimal(context, value.number, settings_.hexadecimal_digits(), files.opener(16));
    }
    record_.decimal = qmp::write_decimal(context, value.number, settings_.decimal_digits(), files.opener(10));
    record_.files = files.files();
    record_.working_memory_peak = memory.region->peak_bytes();
    record_.ended = qmp::cpu_now();
    record_.clocks_ended = read_clocks();
    record_.end_time = local_time_text();
    settings_.framework().reset();
    record_.log.append("End Computation");
    print_report(record_);
    check_digits();
    // Some systems take their time over it, which is not the computation's.
    record_.system = gather_system_info();
    print_system_info(record_.system);
    console::newline();
    write_validation_file(validation_record(settings_, computation, record_),
                          ValidationSealer::of_this_program());
    files.rethrow_failure();
}

// The digits are read back from the file that they were written to.
void RamSession::check_digits() {
    const WrittenFile& file = record_.files.back();
    record_.spot_check = spot_check_file(program_directory(), settings_.constant().short_name(),
                                         file.complete ? file.path : std::string(), record_.decimal.digits);
    print_spot_check(record_.spot_check);
    if (record_.spot_check.kind == SpotCheckResult::Kind::passed && !settings_.success_text.empty()) {
        console::println(settings_.success_text, 'G');
        console::reset_color();
    }
    console::newline();
}

void RamSession::run() {
    const std::unique_ptr<RamComputation> computation =
        settings_.constant().make_ram_computation(settings_.task_decomposition());
    const MemoryPlan plan =
        plan_memory(*computation, settings_.decimal_digits(), settings_.hexadecimal_digits());
    check_output_files(settings_, computation->short_name());
    warn_if_memory_is_short(plan.working);
    print_header(*computation);

    record_.start_time = local_time_text();
    record_.clocks_started = read_clocks();
    record_.started = qmp::cpu_now();
    console::print_column_line(12, "Start Time:", record_.start_time, 'Y');
    console::newline();

    settings_.framework().warm_up();
    Memory memory;
    reserve(memory, plan);
    compute_and_write(memory, *computation);
}

}  // namespace kelvara
