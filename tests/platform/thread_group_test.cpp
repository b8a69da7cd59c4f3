#include "platform/thread_group.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "support/console.h"
#include "support/machine.h"

namespace {

using kelvara_test::FakeMachine;
using kelvara_test::printed_by;
using qmp::os::GroupAffinity;
using qmp::os::ProcessorMask;

TEST(ThreadGroup, NumbersWrapAroundTheGroups) {
    FakeMachine machine;
    machine.groups = {36, 28};
    qmp::ThreadGroupBinder binder(machine);
    EXPECT_EQ(printed_by([&] {
                  for (const std::uint64_t n : {std::uint64_t{5}, std::uint64_t{2}, ~std::uint64_t{0}}) {
                      binder.bind(n);
                  }
              }),
              "");
    const GroupAffinity first = {0, ProcessorMask::first(36)};
    const GroupAffinity second = {1, ProcessorMask::first(28)};
    EXPECT_EQ(machine.asked, (std::vector<GroupAffinity>{second, first, second}));
}

TEST(ThreadGroup, TakesAllProcessorsOfTheGroup) {
    FakeMachine machine;
    machine.groups = {64, 200, 1};
    qmp::ThreadGroupBinder binder(machine);
    for (std::uint64_t n = 0; n < 3; ++n) binder.bind(n);
    EXPECT_EQ(machine.asked[0].mask, ProcessorMask(~std::uint64_t{0}));
    EXPECT_EQ(machine.asked[1].mask, ProcessorMask::first(200));
    EXPECT_EQ(machine.asked[2].mask, ProcessorMask(1));
}

TEST(ThreadGroup, WarnsOfAnEmptyGroupOnce) {
    FakeMachine machine;
    machine.groups = {0};
    qmp::ThreadGroupBinder binder(machine);
    EXPECT_EQ(printed_by([&] { binder.bind(7); }),
              "\n" + std::string(qmp::os::processor_count_source) +
                  " returned zero.\nFurther instances of this message will be suppressed.\n");
    EXPECT_EQ(printed_by([&] { binder.bind(7); }), "");
    machine.groups = {};
    EXPECT_EQ(printed_by([&] { binder.bind(7); }), "");
    EXPECT_TRUE(machine.asked.empty());
}

TEST(ThreadGroup, WarnsWhenTheSystemRefuses) {
    FakeMachine machine;
    machine.groups = {16, 8};
    machine.refuses = true;
    machine.reads_back = GroupAffinity{0, ProcessorMask(3)};
    qmp::ThreadGroupBinder binder(machine);
    EXPECT_EQ(printed_by([&] { binder.bind(1); }),
              "\nWarning: Unable to set processor group affinity:\n"
              "Expected Group: 1\n"
              "Expected Mask: 255\n"
              "Actual Group: 0\n"
              "Actual Mask: 3\n");
    EXPECT_EQ(printed_by([&] { binder.bind(1); }), "");
    // Refused, although it is what the thread has.
    qmp::ThreadGroupBinder another(machine);
    machine.reads_back = GroupAffinity{0, ProcessorMask::first(16)};
    EXPECT_NE(printed_by([&] { another.bind(0); }), "");
}

TEST(ThreadGroup, WarnsWhenSomethingElseIsReadBack) {
    const auto warning = [](const GroupAffinity& actual) {
        FakeMachine machine;
        machine.groups = {100, 100};
        machine.reads_back = actual;
        qmp::ThreadGroupBinder binder(machine);
        return printed_by([&] { binder.bind(0); });
    };
    const std::string expected =
        "\nWarning: Unable to set processor group affinity:\n"
        "Expected Group: 0\n"
        "Expected Mask: 0xfffffffffffffffffffffffff\n";
    EXPECT_EQ(warning({0, ProcessorMask::first(100)}), "");
    EXPECT_EQ(warning({1, ProcessorMask::first(100)}),
              expected + "Actual Group: 1\nActual Mask: 0xfffffffffffffffffffffffff\n");
    EXPECT_EQ(warning({0, ProcessorMask::first(64)}),
              expected + "Actual Group: 0\nActual Mask: 18446744073709551615\n");
}

TEST(ThreadGroup, WarnsWhenNothingIsReadBack) {
    FakeMachine machine;
    machine.read_back_fails = true;
    qmp::ThreadGroupBinder binder(machine);
    const std::string text = printed_by([&] { binder.bind(0); });
    EXPECT_NE(text.find("Actual Group: 0\nActual Mask: 0\n"), std::string::npos) << text;
}

TEST(ThreadGroup, ManyThreadsWarnOnce) {
    FakeMachine machine;
    machine.refuses = true;
    qmp::ThreadGroupBinder binder(machine);
    const std::string text = printed_by([&] {
        std::vector<std::thread> threads;
        for (std::uint64_t i = 0; i < 16; ++i) {
            threads.emplace_back([&binder] {
                for (std::uint64_t n = 0; n < 100; ++n) binder.bind(n);
            });
        }
        for (std::thread& thread : threads) thread.join();
    });
    EXPECT_EQ(machine.asked.size(), 1600u);
    const std::size_t first = text.find("Warning: ");
    ASSERT_NE(first, std::string::npos);
    EXPECT_EQ(text.find("Warning: ", first + 1), std::string::npos) << text;
}

TEST(ThreadGroup, OfThisMachine) {
    std::thread([] {
        const std::uint64_t groups = qmp::os::active_processor_groups();
        for (const std::uint64_t n :
             {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{5}, ~std::uint64_t{0}}) {
            // A narrowed thread gets the whole group back.
            ASSERT_TRUE(qmp::os::set_thread_group_affinity({0, ProcessorMask::of(0)}));
            EXPECT_EQ(printed_by([&] { qmp::set_thread_group(n); }), "");
            const auto affinity = qmp::os::thread_group_affinity();
            ASSERT_TRUE(affinity.has_value());
            EXPECT_EQ(affinity->group, n % groups);
            EXPECT_EQ(affinity->mask, ProcessorMask::first(qmp::os::active_processors(affinity->group)));
        }
    }).join();
}

}  // namespace
