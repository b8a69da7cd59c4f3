// The pool itself: growth, searches, and the life of a latch.
#include "platform/parallel/push_pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <set>
#include <vector>

#include "platform/parallel/spare_processor.h"

namespace {

using qmp::PushPool;
using qmp::TaskLatch;

class Nothing : public qmp::BasicAction {
  public:
    void run(std::uint64_t) override {}
};

TEST(PushPool, TheMaskIsTheSmallestPowerOfTwoLessOneThatCoversTheCount) {
    PushPool pool(true);
    EXPECT_EQ(pool.mask(), 0u);
    const std::uint64_t masks[] = {1, 3, 3, 7, 7, 7, 7, 15, 15};
    for (std::uint64_t n = 1; n <= 9; ++n) {
        pool.ensure_workers(n);
        EXPECT_EQ(pool.count(), n);
        EXPECT_EQ(pool.mask(), masks[n - 1]);
    }
    pool.ensure_workers(3);
    EXPECT_EQ(pool.count(), 9u);
}

TEST(PushPool, AnEmptyPoolAcceptsNothing) {
    for (const bool randomize : {false, true}) {
        PushPool pool(randomize);
        Nothing nothing;
        TaskLatch latch(nothing);
        EXPECT_FALSE(pool.try_push(latch, 0));
    }
}

TEST(PushPool, EveryWorkerRunsTheHookWithItsNumberBeforeItsFirstTask) {
    std::mutex lock;
    std::set<std::uint64_t> numbers;
    {
        PushPool pool(false, [&](std::uint64_t number) {
            const std::lock_guard<std::mutex> guard(lock);
            numbers.insert(number);
        });
        pool.ensure_workers(5);
    }
    EXPECT_EQ(numbers, (std::set<std::uint64_t>{0, 1, 2, 3, 4}));
}

// Holds its worker until released.
class Gate : public qmp::BasicAction {
  public:
    void run(std::uint64_t index) override {
        sum += index;
        ++entered;
        while (!open) std::this_thread::yield();
    }
    std::atomic<std::uint64_t> sum{0};
    std::atomic<int> entered{0};
    std::atomic<bool> open{false};
};

TEST(PushPool, PushAddsAWorkerOnlyWhenAllAreBusy) {
    for (const bool randomize : {false, true}) {
        PushPool pool(randomize);
        Gate gate;
        {
            std::vector<std::unique_ptr<TaskLatch>> latches;
            for (std::uint64_t i = 0; i < 20; ++i) {
                latches.push_back(std::make_unique<TaskLatch>(gate));
                ASSERT_TRUE(pool.push(*latches.back(), i));
                ASSERT_EQ(pool.count(), i + 1);
            }
            // Every worker is held: an extra task finds none.
            TaskLatch extra(gate);
            EXPECT_FALSE(pool.try_push(extra, 0));
            gate.open = true;
        }
        EXPECT_EQ(gate.entered.load(), 20);
        EXPECT_EQ(gate.sum.load(), 190u);
    }
}

TEST(PushPool, ASearchFindsTheOneIdleWorkerWherever) {
    for (const bool randomize : {false, true}) {
        for (int repetition = 0; repetition < 10; ++repetition) {
            PushPool pool(randomize);
            pool.ensure_workers(5);
            Gate gate;
            TaskLatch held[4] = {TaskLatch(gate), TaskLatch(gate), TaskLatch(gate), TaskLatch(gate)};
            for (TaskLatch& latch : held) ASSERT_TRUE(pool.try_push(latch, 0));
            Nothing nothing;
            TaskLatch last(nothing);
            ASSERT_TRUE(pool.try_push(last, 0));
            last.wait();
            gate.open = true;
        }
    }
}

TEST(PushPool, DestructionFinishesWhatWasAccepted) {
    Gate gate;
    gate.open = true;
    TaskLatch latch(gate);
    {
        PushPool pool(false);
        ASSERT_TRUE(pool.push(latch, 3));
    }
    EXPECT_EQ(gate.entered.load(), 1);
}

TEST(TaskLatch, IsNotWaitedForUnlessItWasHandedOver) {
    Nothing nothing;
    TaskLatch latch(nothing);
    latch.wait();
    latch.run(0);
    qmp::SpareProcessor::end_work();  // the run counted its waiting owner, and there is none
}

}  // namespace
