// What the seam promises of processors and threads, on every system.
#include "platform/os/threads.h"

#include <gtest/gtest.h>

#include <bit>
#include <thread>

namespace {

using qmp::os::GroupAffinity;

// A thread of its own: what it does to itself stays with it.
template <typename Function>
void on_a_thread(Function function) {
    std::thread(function).join();
}

std::uint64_t whole_group(std::uint32_t group) {
    const std::uint32_t count = qmp::os::active_processors(group);
    return count >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

TEST(OsThreads, GroupsHoldAllProcessors) {
    const std::uint32_t groups = qmp::os::active_processor_groups();
    ASSERT_GE(groups, 1u);
    std::uint32_t total = 0;
    for (std::uint32_t group = 0; group < groups; ++group) {
        EXPECT_GE(qmp::os::active_processors(group), 1u);
        total += qmp::os::active_processors(group);
    }
    EXPECT_EQ(qmp::os::active_processors(), total);
    if (groups == 1) {
        EXPECT_EQ(total, std::thread::hardware_concurrency());
    }
    EXPECT_EQ(qmp::os::active_processors(groups), 0u);
}

TEST(OsThreads, EveryProcessorCanBeBoundTo) {
    on_a_thread([] {
        for (std::uint32_t k = 0; k < qmp::os::active_processors(0) && k < 64; ++k) {
            const GroupAffinity one{0, std::uint64_t{1} << k};
            ASSERT_TRUE(qmp::os::set_thread_group_affinity(one));
            EXPECT_EQ(qmp::os::thread_group_affinity(), one);
        }
        const GroupAffinity all{0, whole_group(0)};
        ASSERT_TRUE(qmp::os::set_thread_group_affinity(all));
        EXPECT_EQ(qmp::os::thread_group_affinity(), all);
    });
}

TEST(OsThreads, ABoundThreadSeesTheSameMachine) {
    const std::uint32_t before = qmp::os::active_processors();
    on_a_thread([before] {
        ASSERT_TRUE(qmp::os::set_thread_group_affinity({0, 1}));
        EXPECT_EQ(qmp::os::active_processors(), before);
        EXPECT_EQ(qmp::os::active_processors(0),
                  whole_group(0) == ~std::uint64_t{0}
                      ? qmp::os::active_processors(0)
                      : static_cast<std::uint32_t>(std::popcount(whole_group(0))));
        ASSERT_TRUE(qmp::os::set_thread_group_affinity({0, whole_group(0)}));
    });
}

TEST(OsThreads, RefusesProcessorsThatAreNotThere) {
    on_a_thread([] {
        const auto before = qmp::os::thread_group_affinity();
        EXPECT_FALSE(qmp::os::set_thread_group_affinity({0, 0}));
        EXPECT_FALSE(qmp::os::set_thread_group_affinity(
            {static_cast<std::uint16_t>(qmp::os::active_processor_groups()), 1}));
        if (qmp::os::active_processors(0) < 64) {
            EXPECT_FALSE(qmp::os::set_thread_group_affinity({0, whole_group(0) + 1}));
        }
        EXPECT_EQ(qmp::os::thread_group_affinity(), before);
    });
}

TEST(OsThreads, PinsToTheLowestProcessorAndLetsGo) {
    on_a_thread([] {
        const auto before = qmp::os::thread_group_affinity();
        ASSERT_TRUE(before.has_value());
        ASSERT_TRUE(qmp::os::pin_thread_to_lowest_processor());
        const auto pinned = qmp::os::thread_group_affinity();
        ASSERT_TRUE(pinned.has_value());
        EXPECT_EQ(std::popcount(pinned->mask), 1);
        EXPECT_EQ(pinned->mask, before->mask & (0 - before->mask));
        ASSERT_TRUE(qmp::os::unpin_thread());
        EXPECT_EQ(qmp::os::thread_group_affinity(), before);
    });
}

TEST(OsThreads, PriorityCanAlwaysBeLowered) {
    on_a_thread([] {
        EXPECT_TRUE(qmp::os::set_thread_priority(0));
        EXPECT_TRUE(qmp::os::set_thread_priority(-1));
        EXPECT_TRUE(qmp::os::set_thread_priority(-2));
        EXPECT_TRUE(qmp::os::set_thread_priority(-3));
        EXPECT_FALSE(qmp::os::set_thread_priority(-4));
        EXPECT_FALSE(qmp::os::set_thread_priority(4));
    });
}

}  // namespace
