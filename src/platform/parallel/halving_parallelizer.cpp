#include "platform/parallel/halving_parallelizer.h"

#include <algorithm>

#include "platform/os/threads.h"
#include "platform/parallel/spare_processor.h"

namespace qmp {

HalvingParallelizer::Pair::Pair(HalvingParallelizer& framework) : framework_(framework) {
    framework_.pairs_.fetch_add(1, std::memory_order_relaxed);
    SpareProcessor::begin_work();
}

HalvingParallelizer::Pair::~Pair() {
    end_task();
    framework_.pairs_.fetch_sub(1, std::memory_order_relaxed);
}

void HalvingParallelizer::Pair::end_task() {
    if (!task_ended_.exchange(true, std::memory_order_relaxed)) SpareProcessor::end_work();
}

std::uint64_t HalvingParallelizer::usual_most_pairs() {
    return std::max<std::uint64_t>(256, 4 * std::uint64_t{os::active_processors()});
}

void HalvingParallelizer::run_in_parallel(BasicAction& action, std::uint64_t start, std::uint64_t end) {
    if (end <= start || end - start == 1 || !has_enough_pairs()) {
        BasicParallelizer::run_in_parallel(action, start, end);
        return;
    }
    const std::uint64_t middle = start + (end - start) / 2;
    run_in_parallel(action, start, middle);
    run_in_parallel(action, middle, end);
}

std::uint64_t HalvingParallelizer::idle_processors() const {
    return has_enough_pairs() ? 0 : SpareProcessor::count();
}

}  // namespace qmp
