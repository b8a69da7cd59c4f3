#include "shell/program.h"

#include <gtest/gtest.h>

#include "shell/crash_handler.h"

namespace kelvara {
namespace {

TEST(Program, PausesAtExit) {
    EXPECT_FALSE(pauses_at_exit(-1, true));
    EXPECT_FALSE(pauses_at_exit(-1, false));
    EXPECT_TRUE(pauses_at_exit(0, true));
    EXPECT_FALSE(pauses_at_exit(0, false));
    EXPECT_TRUE(pauses_at_exit(1, true));
    EXPECT_TRUE(pauses_at_exit(1, false));
}

TEST(CrashHandler, NamesItsDump) {
    qmp::os::LocalTime time;
    time.year = 2031;
    time.month = 2;
    time.day = 3;
    time.hour = 4;
    time.minute = 5;
    time.second = 59;
    char name[dump_name_size];
    make_dump_name(time, name);
    EXPECT_STREQ(name, "Kelvara-20310203-040559.dmp");
}

}  // namespace
}  // namespace kelvara
