// The Push Pool: worker threads into whose slots tasks are pushed directly. No queue, no lock on the way
// of a task.
//
// Workers are created on demand, live until the pool is destroyed, and never move: they stand in segments
// of 1, 2, 4, ... records, so that the list can grow while other threads walk it.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <mutex>

#include "platform/parallel/push_pool_worker.h"

namespace qmp {

class PushPool {
  public:
    explicit PushPool(bool randomize_searches, ThreadStartHook hook = {});
    // No task may be running. Stops and joins the workers.
    ~PushPool();
    PushPool(const PushPool&) = delete;
    PushPool& operator=(const PushPool&) = delete;

    // Hands the latch to an idle worker. False when all are busy.
    bool try_push(TaskLatch& latch, std::uint64_t index);
    // Hands the latch to an idle worker, adding one when all are busy. False when the system grants no
    // further thread.
    bool push(TaskLatch& latch, std::uint64_t index);
    // Adds workers until there are n, or the system grants no more.
    void ensure_workers(std::uint64_t n);

    std::uint64_t count() const { return count_.load(std::memory_order_acquire); }
    // The smallest 2^k - 1 that is at least the count.
    std::uint64_t mask() const { return mask_.load(std::memory_order_acquire); }

    // Start the search for an idle worker at random, instead of at the first: many threads that push at
    // the same moment then do not meet at the same slots.
    std::atomic<bool> randomize;

  private:
    PushPoolWorker& worker(std::uint64_t number) const;
    // Holding the lock. False when the system grants no thread.
    bool add_worker();
    bool offer(std::uint64_t first, std::uint64_t last, TaskLatch& latch, std::uint64_t index);
    bool offer_to_awake(std::uint64_t workers, TaskLatch& latch, std::uint64_t index);

    const ThreadStartHook hook_;
    std::mutex lock_;
    std::atomic<std::uint64_t> count_{0};
    std::atomic<std::uint64_t> mask_{0};
    // Segment k holds the workers 2^k - 1 to 2^(k+1) - 2. Written before `count_` covers it.
    std::array<PushPoolWorker*, 64> segments_{};
};

}  // namespace qmp
