// One thread of the Push Pool, with the single slot through which it receives tasks.
//
// There is no queue: a compare-exchange on the task pointer claims an idle worker, and whoever claimed it
// then writes the task's index and sets `ready`. The mutex and the condition serve sleeping while idle
// and nothing else.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>

#include "platform/parallel/task_latch.h"

namespace qmp {

// Run by every worker before its first task, with the worker's number.
using ThreadStartHook = std::function<void(std::uint64_t)>;

// On cache lines of its own: its slot is polled by every thread that hands over a task.
class alignas(64) PushPoolWorker {
  public:
    // Starts the thread; the hook must outlive the worker. Throws std::system_error when the system grants
    // no thread.
    PushPoolWorker(std::uint64_t number, const ThreadStartHook& hook);
    // Finishes the task at hand and ends the thread.
    ~PushPoolWorker();
    PushPoolWorker(const PushPoolWorker&) = delete;
    PushPoolWorker& operator=(const PushPoolWorker&) = delete;

    // Hands the latch over and returns true, or returns false when the worker is busy. Any thread.
    bool try_accept(TaskLatch& latch, std::uint64_t index);
    // Whether it waits for a task without having gone to sleep: only a hint.
    bool is_awake() const { return awake_.load(std::memory_order_relaxed); }

  private:
    void thread_main(std::uint64_t number, const ThreadStartHook& hook);
    void run_tasks();
    void run_task(TaskLatch& latch);

    std::atomic<TaskLatch*> task_{nullptr};
    std::uint64_t index_ = 0;  // written by the claimant before ready_, read by the worker after it
    std::atomic<bool> ready_{false};
    std::atomic<bool> awake_{false};
    std::mutex lock_;
    std::condition_variable wake_;
    bool stop_ = false;
    std::thread thread_;  // last: it uses all of the above
};

}  // namespace qmp
