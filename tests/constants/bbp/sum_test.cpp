// Sums over threads, the binding of their threads, and what they say of themselves.
#include "constants/bbp/term_sum.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>
#include <set>
#include <system_error>
#include <thread>

#include "constants/bbp/bbp_reference.h"
#include "constants/bbp/block_sum.h"
#include "constants/bbp/core_binder.h"
#include "constants/bbp/sum_status.h"
#include "radix/recording.h"
#include "support/clocks.h"
#include "support/fatal.h"
#include "support/machine.h"

namespace kelvara::bbp {
namespace {

void ignore(std::uint64_t, std::uint64_t) {}

ThreadPlan threads(std::uint64_t count) {
    ThreadPlan plan;
    plan.threads = count;
    return plan;
}

TEST(BbpSum, IsThatOfItsTerms) {
    const Term term = {8, 1, -4, 4002, true};
    kelvara_test::ReferenceSum reference(4);
    for (std::int64_t k = 0; k < 1048; ++k)
        reference.add(4002 - 4 * k, static_cast<std::uint64_t>(8 * k + 1));
    std::vector<std::uint64_t> sums = reference.digits();
    ChunkFraction expected(6);
    expected.take(sums, 1);
    EXPECT_EQ(sum_of(term, 1048, 6, threads(1), ignore).hexadecimal_digits(),
              Fraction(expected, 6).hexadecimal_digits());
}

TEST(BbpSum, DoesNotDependOnTheThreads) {
    // Seven blocks, the last of which is short and has small terms only.
    const Term term = {20, 3, -20, 20 * 60000, false};
    const std::uint64_t count = 6 * block_terms + 7;
    const std::string one = sum_of(term, count, 3, threads(1), ignore).hexadecimal_digits();
    for (const std::uint64_t number : {2, 3, 16}) {
        EXPECT_EQ(sum_of(term, count, 3, threads(number), ignore).hexadecimal_digits(), one) << number;
    }
}

TEST(BbpSum, StartsNoThreadWithoutWork) {
    std::mutex lock;
    std::set<std::uint64_t> bound;
    ThreadPlan plan = threads(65536);
    plan.bind = [&](std::uint64_t thread) {
        const std::lock_guard guard(lock);
        bound.insert(thread);
    };
    std::vector<std::uint64_t> reports;
    sum_of({8, 1, -4, 100, true}, 2 * block_terms + 1, 3, plan,
           [&](std::uint64_t done, std::uint64_t blocks) {
               reports.push_back(done);
               EXPECT_EQ(blocks, 3u);
               EXPECT_LE(done, 3u);
           });
    EXPECT_EQ(bound, (std::set<std::uint64_t>{0, 1, 2}));
    EXPECT_TRUE(std::ranges::is_sorted(reports));
}

// The two that were started do not sum for years first.
TEST(BbpSum, AThreadThatTheSystemRefusesEndsIt) {
    ThreadPlan plan = threads(3);
    int started = 0;  // by this thread only
    plan.start = [&started](std::function<void()> work) {
        if (started == 2) {
            throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
        }
        ++started;
        return qmp::start_child_thread(std::move(work));
    };
    constexpr std::uint64_t offset = std::uint64_t{1} << 45;
    EXPECT_THROW(sum_of({8, 1, -4, 4 * offset, true}, offset, 3, plan, ignore), std::system_error);
    EXPECT_EQ(started, 2);
}

#if GTEST_HAS_DEATH_TEST
TEST(BbpSumDeathTest, ModuliBeyondTheLimitEndTheProgram) {
    EXPECT_FATAL(sum_of({8, modulus_limit + 1, -4, 5, true}, 2, 3, threads(1), ignore),
                 "Maximum coefficient size of 2\\^49 has been exceeded\\.");
}
#endif

TEST(BbpCoreBinder, GoesRoundTheCores) {
    kelvara_test::FakeMachine machine;
    machine.groups = {2, 1};
    const qmp::CoreTable cores(machine.groups);
    CoreBinder binder(cores, machine);
    for (std::uint64_t thread = 0; thread < 5; ++thread) binder.bind(thread);
    ASSERT_EQ(machine.asked.size(), 5u);
    for (std::uint64_t thread = 0; thread < 5; ++thread) {
        EXPECT_EQ(machine.asked[thread], *cores.affinity(thread % 3)) << thread;
    }
    EXPECT_FALSE(binder.refused_core());
}

TEST(BbpCoreBinder, KeepsARefusal) {
    kelvara_test::FakeMachine machine;
    machine.refuses = true;
    const qmp::CoreTable cores(machine.groups);
    CoreBinder binder(cores, machine);
    binder.bind(21);
    EXPECT_EQ(binder.refused_core(), 5u);
}

TEST(BbpCoreBinder, DoesNothingWithoutCores) {
    kelvara_test::FakeMachine machine;
    const qmp::CoreTable none({});
    CoreBinder binder(none, machine);
    binder.bind(0);
    EXPECT_TRUE(machine.asked.empty());
    EXPECT_FALSE(binder.refused_core());
}

// A clock that stands still but for what the test adds.
struct StillClocks : kelvara_test::FakeClocks {
    StillClocks() { ticks_per_reading = 0; }
    void pass(double seconds) { counter += static_cast<std::int64_t>(seconds * 1e7); }
};

TEST(BbpSumStatus, TellsItsPartAFewTimesASecond) {
    kelvara_test::RecordingProgress progress;
    StillClocks clocks;
    {
        SumStatus status(progress, 2, 14, true, clocks);
        status.show(1, 8);
        clocks.pass(0.21);
        status.show(2, 8);
        clocks.pass(0.1);
        status.show(3, 8);
        clocks.pass(0.1);
        status.show(4, 8);
        EXPECT_EQ(progress.depth, 1);
    }
    EXPECT_EQ(progress.depth, 0);
    EXPECT_EQ(progress.lines,
              (std::vector<std::string>{"label 2 / 14 -> 25.000%", "label 2 / 14 -> 50.000%"}));
}

TEST(BbpSumStatus, IsALineNowAndThenWhereLinesStay) {
    kelvara_test::RecordingProgress progress;
    StillClocks clocks;
    {
        SumStatus status(progress, 1, 4, false, clocks);
        clocks.pass(599);
        status.show(1, 1000);
        clocks.pass(2);
        status.show(2, 1000);
        clocks.pass(599);
        status.show(3, 1000);
        clocks.pass(2);
        status.show(1000, 1000);
    }
    EXPECT_EQ(progress.lines,
              (std::vector<std::string>{"message 1 / 4 -> 0.200%", "message 1 / 4 -> 100.000%"}));
    EXPECT_EQ(progress.depth, 0);
}

}  // namespace
}  // namespace kelvara::bbp
