#include "platform/parallel/push_pool_worker.h"

#include "console/console.h"
#include "errors/fatal.h"
#include "platform/os/thread_start.h"
#include "platform/parallel/spare_processor.h"
#include "platform/parallel/spin.h"

namespace qmp {

PushPoolWorker::PushPoolWorker(std::uint64_t number, const ThreadStartHook& hook)
    : thread_([this, number, &hook] { thread_main(number, hook); }) {}

PushPoolWorker::~PushPoolWorker() {
    {
        const std::lock_guard<std::mutex> guard(lock_);
        stop_ = true;
        wake_.notify_one();
    }
    thread_.join();
}

bool PushPoolWorker::try_accept(TaskLatch& latch, std::uint64_t index) {
    // The plain look first: a failing compare-exchange would still take the cache line from the worker.
    if (task_.load(std::memory_order_relaxed) != nullptr) return false;
    TaskLatch* idle = nullptr;
    if (!task_.compare_exchange_strong(idle, &latch, std::memory_order_acq_rel, std::memory_order_relaxed)) {
        return false;
    }
    SpareProcessor::begin_work();
    index_ = index;
    ready_.store(true, std::memory_order_release);
    const std::lock_guard<std::mutex> guard(lock_);
    wake_.notify_one();
    return true;
}

void PushPoolWorker::thread_main(std::uint64_t number, const ThreadStartHook& hook) {
    os::prepare_thread_for_crashes();
    try {
        if (hook) hook(number);
        run_tasks();
    } catch (...) {
        claim_last_words();
        console::print_warning("PushPoolWorker: An exception was thrown from a task.");
        print_current_exception();
        console::terminate(1);
    }
}

void PushPoolWorker::run_tasks() {
    for (;;) {
        if (TaskLatch* latch = task_.load(std::memory_order_acquire)) {
            run_task(*latch);
            continue;
        }
        awake_.store(true, std::memory_order_relaxed);
        const bool found =
            spin_for_a_moment([this] { return task_.load(std::memory_order_relaxed) != nullptr; });
        awake_.store(false, std::memory_order_relaxed);
        if (found) continue;
        std::unique_lock<std::mutex> guard(lock_);
        if (stop_) break;
        // Claimants notify under the lock after they set the slot, so no wake-up is lost in between.
        if (task_.load(std::memory_order_acquire) == nullptr) wake_.wait(guard);
    }
    if (TaskLatch* latch = task_.load(std::memory_order_acquire)) run_task(*latch);
}

void PushPoolWorker::run_task(TaskLatch& latch) {
    spin_until([this] { return ready_.load(std::memory_order_acquire); });
    latch.run(index_);  // the latch is gone when this returns
    SpareProcessor::end_work();
    ready_.store(false, std::memory_order_relaxed);
    task_.store(nullptr, std::memory_order_release);
}

}  // namespace qmp
