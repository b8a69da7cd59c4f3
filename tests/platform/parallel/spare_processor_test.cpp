// How many processors are idle, as far as the Push Pool knows.
#include "platform/parallel/spare_processor.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <thread>

#include "platform/os/threads.h"
#include "platform/parallel/parallel_context.h"
#include "platform/parallel/push_pool_parallelizer.h"
#include "platform/parallel/spin.h"

namespace {

using qmp::ParallelContext;
using qmp::PushPoolParallelizer;

// The count may lag behind for the moment in which a worker goes back to its slot.
void expect_soon(const PushPoolParallelizer& pool, std::uint64_t idle) {
    for (int i = 0; i < 1000 && pool.idle_processors() != idle; ++i) std::this_thread::yield();
    EXPECT_EQ(pool.idle_processors(), idle);
}

TEST(SpareProcessor, TasksAtWorkTakeProcessorsAndGiveThemBack) {
    PushPoolParallelizer pool;
    const std::uint64_t before = pool.idle_processors();
    ASSERT_LE(before, qmp::os::active_processors());
    const std::uint64_t tasks = qmp::os::active_processors() + 1;
    const ParallelContext parallel{tasks, &pool};
    for (int round = 0; round < 20; ++round) {
        std::atomic<std::uint64_t> at_work{0}, seen{0};
        parallel.run(0, tasks < 16 ? tasks : 16, [&](std::uint64_t) {
            at_work.fetch_add(1);
            qmp::spin_until([&] { return at_work.load() >= (tasks < 16 ? tasks : 16); });
            if (pool.idle_processors() < before || before == 0) seen.fetch_add(1);
        });
        EXPECT_GT(seen.load(), 0u);
    }
    expect_soon(pool, before);
}

TEST(SpareProcessor, NestedPairsBalanceTheCount) {
    PushPoolParallelizer pool;
    const std::uint64_t before = pool.idle_processors();
    const ParallelContext parallel{4, &pool};
    std::atomic<int> leaves{0};
    for (int round = 0; round < 200; ++round) {
        parallel.run_pair([&] { parallel.run_pair([&] { leaves++; }, [&] { leaves++; }); },
                          [&] { parallel.run(0, 3, [&](std::uint64_t) { leaves++; }); });
    }
    EXPECT_EQ(leaves.load(), 1000);
    expect_soon(pool, before);
}

// With a limit that is used up, tasks run on the calling thread.
TEST(SpareProcessor, TasksThatNoWorkerTakesBalanceTheCount) {
    PushPoolParallelizer pool;
    pool.threads = 1;
    const std::uint64_t before = pool.idle_processors();
    const ParallelContext parallel{4, &pool};
    std::atomic<int> leaves{0};
    for (int round = 0; round < 200; ++round) {
        parallel.run(0, 8, [&](std::uint64_t) { leaves++; });
    }
    EXPECT_EQ(leaves.load(), 1600);
    expect_soon(pool, before);
}

TEST(SpareProcessor, WaitingEndsWithTheCondition) {
    EXPECT_TRUE(qmp::spin_for_a_moment([] { return true; }));
    int looks = 0;
    EXPECT_FALSE(qmp::spin_for_a_moment([&] { return ++looks < 0; }));
    EXPECT_GE(looks, 64);
}

// A framework that keeps no account leaves the decision to its caller's task count.
TEST(SpareProcessor, OtherFrameworksClaimNoLimit) {
    EXPECT_EQ(ParallelContext::sequential().parallelizer->idle_processors(), ~std::uint64_t{0});
}

}  // namespace
