// The operating system's own pool of threads, where it has one: Windows.
#pragma once

#include <cstdint>

namespace qmp::os {

// Something that a pool's thread runs. Whoever submits it keeps it until it is over.
class ThreadPoolTask {
  public:
    virtual void run() noexcept = 0;

  protected:
    ~ThreadPoolTask() = default;
};

// Any thread may call these, also one of the pool's own; the pool adds threads where its own wait for
// others' work, up to a limit of some hundreds that the system sets.
class ThreadPool {
  public:
    // Opaque: a task that was made ready for the pool.
    struct Work;

    // Null when the system refuses; its error code is stored then.
    virtual Work* create(ThreadPoolTask& task, std::uint32_t& error_code) = 0;
    // Has the task run once for each call.
    virtual void submit(Work* work) = 0;
    // Until every run that was submitted is over; none is cancelled.
    virtual void wait(Work* work) = 0;
    // No run may be under way.
    virtual void close(Work* work) = 0;

  protected:
    ~ThreadPool() = default;
};

// Lives as long as the process. Null where the system has no such pool.
ThreadPool* system_thread_pool();

}  // namespace qmp::os
