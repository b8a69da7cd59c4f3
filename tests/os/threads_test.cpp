// What the seam promises of processors and threads, on every system.
#include "platform/os/threads.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

using qmp::os::GroupAffinity;
using qmp::os::ProcessorMask;

// A thread of its own: what it does to itself stays with it.
template <typename Function>
void on_a_thread(Function function) {
    std::thread(function).join();
}

ProcessorMask whole_group(std::uint32_t group) {
    return ProcessorMask::first(qmp::os::active_processors(group));
}

TEST(OsThreads, GroupsHoldAllProcessors) {
    const std::uint32_t groups = qmp::os::active_processor_groups();
    ASSERT_GE(groups, 1u);
    std::uint32_t total = 0;
    for (std::uint32_t group = 0; group < groups; ++group) {
        EXPECT_GE(qmp::os::active_processors(group), 1u);
        total += qmp::os::active_processors(group);
    }
    // Fewer where a quota leaves only some of them busy.
    EXPECT_GE(qmp::os::active_processors(), 1u);
    EXPECT_LE(qmp::os::active_processors(), total);
    if (groups == 1) {
        EXPECT_EQ(total, std::thread::hardware_concurrency());
    }
    EXPECT_EQ(qmp::os::active_processors(groups), 0u);
}

TEST(OsThreads, EveryProcessorCanBeBoundTo) {
    on_a_thread([] {
        for (std::uint32_t k = 0; k < qmp::os::active_processors(0); ++k) {
            const GroupAffinity one{0, ProcessorMask::of(k)};
            ASSERT_TRUE(qmp::os::set_thread_group_affinity(one));
            EXPECT_EQ(qmp::os::thread_group_affinity(), one);
        }
        const GroupAffinity all{0, whole_group(0)};
        ASSERT_TRUE(qmp::os::set_thread_group_affinity(all));
        EXPECT_EQ(qmp::os::thread_group_affinity(), all);
    });
}

TEST(OsThreads, ABoundThreadSeesTheSameMachine) {
    const std::uint32_t all = qmp::os::active_processors();
    const std::uint32_t in_group = qmp::os::active_processors(0);
    on_a_thread([all, in_group] {
        ASSERT_TRUE(qmp::os::set_thread_group_affinity({0, ProcessorMask::of(0)}));
        EXPECT_EQ(qmp::os::active_processors(), all);
        EXPECT_EQ(qmp::os::active_processors(0), in_group);
        ASSERT_TRUE(qmp::os::set_thread_group_affinity({0, whole_group(0)}));
    });
}

TEST(OsThreads, RefusesProcessorsThatAreNotThere) {
    on_a_thread([] {
        const auto before = qmp::os::thread_group_affinity();
        EXPECT_FALSE(qmp::os::set_thread_group_affinity({0, {}}));
        const auto no_group = static_cast<std::uint16_t>(qmp::os::active_processor_groups());
        EXPECT_FALSE(qmp::os::set_thread_group_affinity({no_group, ProcessorMask::of(0)}));
        ProcessorMask one_more = whole_group(0);
        one_more.insert(qmp::os::active_processors(0));
        EXPECT_FALSE(qmp::os::set_thread_group_affinity({0, one_more}));
        EXPECT_FALSE(qmp::os::set_thread_group_affinity({0, ProcessorMask::of(5000)}));
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
        EXPECT_EQ(pinned->mask, ProcessorMask::of(before->mask.processors().front()));
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
