// A task handed to a worker thread, and the means to wait until it is over.
//
// The latch lives on the stack of the thread that hands it over. That frame must not be left while the
// worker still touches the latch, so the worker's very last access sets `released`, and waiting is over
// only then. The destructor waits: an exception on the owner's side cannot leave a worker behind.
#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>

#include "platform/parallel/basic_action.h"

namespace qmp {

class TaskLatch final : public BasicAction {
  public:
    explicit TaskLatch(BasicAction& action) : action_(action) {}
    ~TaskLatch() override { wait(); }
    TaskLatch(const TaskLatch&) = delete;
    TaskLatch& operator=(const TaskLatch&) = delete;

    // The worker's side: runs the action and signals. When the action throws there is no signal; a worker
    // ends the program then, and the owner must not go on meanwhile.
    void run(std::uint64_t index) override;

    // The owner's side. Only a latch that was handed over is waited for.
    void set_handed_over() { handed_over_ = true; }
    void wait();

  private:
    void signal();

    std::mutex lock_;
    std::condition_variable condition_;
    std::atomic<bool> released_{false};
    std::atomic<bool> done_{false};
    BasicAction& action_;
    bool handed_over_ = false;  // the owner's alone
};

}  // namespace qmp
