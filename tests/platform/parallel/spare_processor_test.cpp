// How many processors are idle, as far as the Push Pool knows.
#include "platform/parallel/spare_processor.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <stdexcept>
#include <thread>

#include "platform/os/threads.h"
#include "platform/parallel/framework_variants.h"
#include "platform/parallel/parallel_context.h"
#include "platform/parallel/push_pool_parallelizer.h"
#include "platform/parallel/spin.h"

namespace {

using qmp::ParallelContext;
using qmp::PushPoolParallelizer;

// The count may lag behind for the moment in which a worker goes back to its slot.
void expect_soon(const qmp::BasicParallelizer& pool, std::uint64_t idle) {
    for (int i = 0; i < 100000 && pool.idle_processors() != idle; ++i) std::this_thread::yield();
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

// In every framework that keeps an account: tasks at work, tasks that waited for, and exceptions.
TEST(SpareProcessor, ThreadsOfTheSystemsBalanceTheCount) {
    for (const auto& variant : kelvara_test::framework_variants()) {
        if (!variant.halves()) continue;
        SCOPED_TRACE(variant.name);
        const auto framework = variant.make();
        const std::uint64_t before = framework->idle_processors();
        ASSERT_LE(before, qmp::os::active_processors());
        const ParallelContext parallel{4, framework.get()};
        for (int round = 0; round < 5; ++round) {
            std::atomic<int> leaves{0};
            parallel.run_pair([&] { parallel.run_pair([&] { leaves++; }, [&] { leaves++; }); },
                              [&] { parallel.run(0, 3, [&](std::uint64_t) { leaves++; }); });
            EXPECT_EQ(leaves.load(), 5);
            auto nothing = [](std::uint64_t) {};
            auto fail = [](std::uint64_t) { throw std::runtime_error("b"); };
            qmp::FunctionAction a(nothing);
            qmp::FunctionAction b(fail);
            EXPECT_THROW(framework->run_in_parallel(a, b), std::runtime_error);
        }
        EXPECT_EQ(framework->idle_processors(), before);
    }
}

TEST(SpareProcessor, ATaskElsewhereTakesAProcessorUntilItIsOver) {
    for (const auto& variant : kelvara_test::framework_variants()) {
        if (!variant.halves()) continue;
        SCOPED_TRACE(variant.name);
        const auto framework = variant.make();
        const std::uint64_t before = framework->idle_processors();
        if (before == 0) GTEST_SKIP() << "no processor is idle from the beginning";
        std::atomic<bool> over{false};
        auto wait = [&](std::uint64_t) { qmp::spin_until([&] { return over.load(); }); };
        auto look = [&](std::uint64_t) {
            EXPECT_EQ(framework->idle_processors(), before - 1);
            over = true;
            expect_soon(*framework, before);
        };
        qmp::FunctionAction a(wait);
        qmp::FunctionAction b(look);
        framework->run_in_parallel(a, b);
        EXPECT_EQ(framework->idle_processors(), before);
    }
}

// A framework that keeps no account leaves the decision to its caller's task count.
TEST(SpareProcessor, OtherFrameworksClaimNoLimit) {
    EXPECT_EQ(ParallelContext::sequential().parallelizer->idle_processors(), ~std::uint64_t{0});
}

}  // namespace
