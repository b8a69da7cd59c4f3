#include "platform/parallel/spawn_parallelizer.h"

#include <utility>

#include "platform/parallel/spare_processor.h"

namespace qmp {

SpawnParallelizer::SpawnParallelizer(StartThread start_thread)
    : HalvingParallelizer(usual_most_pairs()), start_thread_(std::move(start_thread)) {}

void SpawnParallelizer::run_in_parallel(BasicAction& a, BasicAction& b) {
    TaskElsewhere elsewhere;
    JoiningThread thread(start_thread_([&a, &elsewhere] {
        a.run(0);
        elsewhere.end();
    }));
    b.run(0);
    const ThreadAtRest at_rest;
    thread.join();
}

}  // namespace qmp
