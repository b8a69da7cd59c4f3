// How many halves of ranges are under way at once.
#include "platform/parallel/halving_parallelizer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "platform/os/threads.h"
#include "platform/parallel/framework_variants.h"
#include "platform/parallel/spawn_parallelizer.h"

namespace {

using kelvara_test::CountingAction;

class Peak {
  public:
    class Visit {
      public:
        explicit Visit(Peak& peak) : peak_(peak) {
            const std::int64_t now = ++peak_.present_;
            std::int64_t seen = peak_.most_.load();
            while (seen < now && !peak_.most_.compare_exchange_weak(seen, now)) {
            }
        }
        ~Visit() { --peak_.present_; }
        Visit(const Visit&) = delete;
        Visit& operator=(const Visit&) = delete;

      private:
        Peak& peak_;
    };
    std::int64_t most() const { return most_.load(); }

  private:
    std::atomic<std::int64_t> present_{0};
    std::atomic<std::int64_t> most_{0};
};

// A thread for each pair, and the most pairs that were under way.
class WatchedParallelizer final : public qmp::HalvingParallelizer {
  public:
    explicit WatchedParallelizer(std::uint64_t most_pairs) : HalvingParallelizer(most_pairs) {}
    using HalvingParallelizer::run_in_parallel;
    void run_in_parallel(qmp::BasicAction& a, qmp::BasicAction& b) override {
        ++calls;
        Pair pair(*this);
        const Peak::Visit visit(pairs);
        const qmp::JoiningThread thread(qmp::start_child_thread([&a, &pair] {
            a.run(0);
            pair.end_task();
        }));
        b.run(0);
    }
    const char* get_type_name() const override { return "watched"; }
    const char* get_display_name() const override { return "Watched"; }
    Peak pairs;
    std::atomic<int> calls{0};
};

TEST(HalvingParallelizer, KeepsToItsNumberOfPairs) {
    for (const std::uint64_t most : {0, 1, 2, 5}) {
        WatchedParallelizer framework(most);
        for (int round = 0; round < 2; ++round) {
            CountingAction action(200);
            framework.run_in_parallel(action, 3, 190);
            EXPECT_TRUE(action.exactly_once(3, 190));
        }
        EXPECT_LE(framework.pairs.most(), static_cast<std::int64_t>(2 * most));
        EXPECT_EQ(framework.pairs.most() > 0, most > 0);
    }
}

TEST(HalvingParallelizer, HalvesAgainWhenPairsHaveEnded) {
    WatchedParallelizer framework(1);
    for (int round = 0; round < 3; ++round) {
        std::atomic<int> elsewhere{0};
        const auto caller = std::this_thread::get_id();
        auto work = [&](std::uint64_t) {
            if (std::this_thread::get_id() != caller) ++elsewhere;
        };
        qmp::FunctionAction action(work);
        framework.run_in_parallel(action, 0, 4);
        EXPECT_EQ(elsewhere.load(), 2);
    }
}

TEST(HalvingParallelizer, NoProcessorIsIdleOnceThereAreEnoughPairs) {
    WatchedParallelizer framework(2);
    EXPECT_EQ(WatchedParallelizer(0).idle_processors(), 0u);
    const std::uint64_t before = framework.idle_processors();
    auto nothing = [](std::uint64_t) {};
    qmp::FunctionAction empty(nothing);
    auto look = [&](std::uint64_t) { EXPECT_EQ(framework.idle_processors(), 0u); };
    qmp::FunctionAction second(look);
    auto nest = [&](std::uint64_t) { framework.run_in_parallel(empty, second); };
    qmp::FunctionAction first(nest);
    framework.run_in_parallel(empty, first);
    EXPECT_EQ(framework.idle_processors(), before);
}

TEST(HalvingParallelizer, GivesItsPairsBackAfterAnException) {
    WatchedParallelizer framework(1);
    auto fail = [caller = std::this_thread::get_id()](std::uint64_t) {
        if (std::this_thread::get_id() == caller) throw 1;
    };
    qmp::FunctionAction action(fail);
    for (int round = 0; round < 3; ++round) EXPECT_THROW(framework.run_in_parallel(action, 0, 2), int);
    EXPECT_EQ(framework.calls.load(), 3);
}

// Many hundred tasks do not become as many threads at once.
TEST(SpawnParallelizer, HoldsSomeHundredThreadsAtTheMost) {
    Peak threads;
    qmp::SpawnParallelizer framework([&](std::function<void()> work) {
        return qmp::start_child_thread([&threads, work = std::move(work)] {
            const Peak::Visit visit(threads);
            work();
        });
    });
    const std::uint64_t tasks = 10 * qmp::os::active_processors() + 700;
    CountingAction action(tasks);
    framework.run_in_parallel(action, 0, tasks);
    EXPECT_TRUE(action.exactly_once(0, tasks));
    EXPECT_LE(threads.most(), 2 * std::max<std::int64_t>(256, 4 * qmp::os::active_processors()));
    EXPECT_GE(threads.most(), 2);
}

}  // namespace
