// The framework over the operating system's own thread pool. Registered where the system has one.
//
// An exception that escapes a task on one of the pool's threads ends the program; one on the calling thread
// propagates after the other tasks have finished.
#pragma once

#include "platform/os/thread_pool.h"
#include "platform/parallel/halving_parallelizer.h"

namespace qmp {

class WindowsPoolParallelizer final : public HalvingParallelizer {
  public:
    static constexpr const char* type_name = "winpool";
    static constexpr const char* display_name = "Windows Thread Pool";

    WindowsPoolParallelizer() : WindowsPoolParallelizer(*os::system_thread_pool()) {}
    explicit WindowsPoolParallelizer(os::ThreadPool& pool) : HalvingParallelizer(most_pairs), pool_(pool) {}

    using HalvingParallelizer::run_in_parallel;
    // a goes to the pool. A SystemException when the system refuses; nothing was run then.
    void run_in_parallel(BasicAction& a, BasicAction& b) override;
    const char* get_type_name() const override { return type_name; }
    const char* get_display_name() const override { return display_name; }

  private:
    // The pool holds at most 500 threads. Were that many to wait for tasks that have none, nothing
    // would ever go on.
    static constexpr std::uint64_t most_pairs = 200;

    os::ThreadPool& pool_;
};

}  // namespace qmp
