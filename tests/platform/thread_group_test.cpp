#include "platform/thread_group.h"

#include <gtest/gtest.h>

#include <thread>

#include "platform/os/threads.h"
#include "support/console.h"

namespace {

TEST(ThreadGroup, NumbersWrapAroundTheGroups) {
    std::thread([] {
        const std::uint64_t groups = qmp::os::active_processor_groups();
        for (const std::uint64_t n :
             {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{5}, ~std::uint64_t{0}}) {
            EXPECT_EQ(kelvara_test::printed_by([&] { qmp::set_thread_group(n); }), "");
            const auto affinity = qmp::os::thread_group_affinity();
            ASSERT_TRUE(affinity.has_value());
            EXPECT_EQ(affinity->group, n % groups);
        }
    }).join();
}

TEST(ThreadGroup, ANarrowedThreadGetsTheWholeGroupBack) {
    std::thread([] {
        ASSERT_TRUE(qmp::os::set_thread_group_affinity({0, 1}));
        qmp::set_thread_group(0);
        const std::uint32_t count = qmp::os::active_processors(0);
        EXPECT_EQ(qmp::os::thread_group_affinity()->mask,
                  count >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1);
    }).join();
}

}  // namespace
