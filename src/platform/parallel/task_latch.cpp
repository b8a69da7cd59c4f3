#include "platform/parallel/task_latch.h"

#include "platform/parallel/spare_processor.h"
#include "platform/parallel/spin.h"

namespace qmp {

void TaskLatch::run(std::uint64_t index) {
    action_.run(index);
    signal();
}

void TaskLatch::signal() {
    // A release is the store fence: what the action wrote is visible to whoever sees `done_`.
    done_.store(true, std::memory_order_release);
    SpareProcessor::begin_work();  // for the owner
    {
        const std::lock_guard<std::mutex> guard(lock_);
        condition_.notify_all();
    }
    released_.store(true, std::memory_order_release);
}

void TaskLatch::wait() {
    if (!handed_over_) return;
    handed_over_ = false;
    SpareProcessor::end_work();
    if (!spin_for_a_moment([this] { return done_.load(std::memory_order_acquire); })) {
        std::unique_lock<std::mutex> guard(lock_);
        condition_.wait(guard, [this] { return done_.load(std::memory_order_acquire); });
    }
    spin_until([this] { return released_.load(std::memory_order_acquire); });
}

}  // namespace qmp
