// Every thread that the program starts can report that its stack has run out.
#include <gtest/gtest.h>

#include <thread>

#include "platform/parallel/framework_variants.h"
#include "platform/parallel/run_on_threads.h"
#include "support/sanitized.h"
#include "support/linux/stack_overflow.h"

namespace {

using kelvara_test::FrameworkVariant;

class OverflowAction : public qmp::BasicAction {
  public:
    void run(std::uint64_t) override {
        if (std::this_thread::get_id() != caller_) kelvara_test::use_up_the_stack(1);
    }

  private:
    std::thread::id caller_ = std::this_thread::get_id();
};

class StackOverflowDeathTest : public testing::TestWithParam<FrameworkVariant> {};

INSTANTIATE_TEST_SUITE_P(Variants, StackOverflowDeathTest,
                         testing::Values(FrameworkVariant{"cppasync", "cppasync"},
                                         FrameworkVariant{"spawn", "spawn"},
                                         FrameworkVariant{"pushpool", "pushpool"},
                                         FrameworkVariant{"winpool_over_a_fake", "fake"}),
                         kelvara_test::framework_variant_name);

TEST_P(StackOverflowDeathTest, OnAFrameworksThreadReachesTheCrashHandler) {
    if (kelvara_test::sanitized) GTEST_SKIP() << "a sanitizer reports crashes itself";
    EXPECT_HANDLED_OVERFLOW({
        const auto framework = GetParam().make();
        OverflowAction action;
        framework->run_in_parallel(action, 0, 4);
    });
}

TEST(StackOverflowDeathTest, OnAThreadOfATasksOwnReachesTheCrashHandler) {
    if (kelvara_test::sanitized) GTEST_SKIP() << "a sanitizer reports crashes itself";
    EXPECT_HANDLED_OVERFLOW({
        OverflowAction action;
        qmp::run_on_threads(action, 0, 1);
    });
}

}  // namespace
