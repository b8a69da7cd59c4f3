#include "platform/parallel/spawn_parallelizer.h"

#include <utility>

#include "platform/parallel/spare_processor.h"

namespace qmp {

SpawnParallelizer::SpawnParallelizer(StartThread start_thread)
    : HalvingParallelizer(usual_most_pairs()), start_thread_(std::move(start_thread)) {}

void SpawnParallelizer::run_in_parallel(BasicAction& a, BasicAction& b) {
    Pair pair(*this);
    JoiningThread thread(start_thread_([&a, &pair] {
        a.run(0);
        pair.end_task();
    }));
    b.run(0);
    const ThreadAtRest at_rest;
    thread.join();
}

}  // namespace qmp
