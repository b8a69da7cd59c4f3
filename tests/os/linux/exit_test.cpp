#include <gtest/gtest.h>

#include <cstdio>

#include "platform/os/process.h"

namespace qmp::os {
namespace {

TEST(ProcessDeathTest, EndsAtOnceWithTheExitCode) {
    struct Loud {
        ~Loud() { std::fputs("destroyed", stderr); }
    };
    EXPECT_EXIT(
        {
            static Loud loud;
            exit_process(3);
        },
        testing::ExitedWithCode(3), "^$");
}

}  // namespace
}  // namespace qmp::os
