// The framework that starts a new thread for each task that leaves the calling one.
//
// Simple, and as slow as the system's start of a thread. An exception that escapes a task on such a thread
// ends the program; one on the calling thread propagates after the other tasks have finished.
#pragma once

#include "platform/parallel/child_thread.h"
#include "platform/parallel/halving_parallelizer.h"

namespace qmp {

class SpawnParallelizer final : public HalvingParallelizer {
  public:
    static constexpr const char* type_name = "spawn";
    static constexpr const char* display_name = "Thread Spawn (1 Thread/Task)";

    explicit SpawnParallelizer(StartThread start_thread = start_child_thread);

    using HalvingParallelizer::run_in_parallel;
    // a goes to a new thread. std::system_error when the system grants none; nothing was run then.
    void run_in_parallel(BasicAction& a, BasicAction& b) override;
    const char* get_type_name() const override { return type_name; }
    const char* get_display_name() const override { return display_name; }

  private:
    const StartThread start_thread_;
};

}  // namespace qmp
