// What stands for the privileges where there are no tokens.
#include "platform/os/privileges.h"

#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace {

namespace os = qmp::os;

os::TokenCalls::Adjustment enable(const char* name) {
    const os::TokenCalls& calls = os::token_calls();
    return calls.adjust(0, calls.look_up(name).identifier, true);
}

TEST(LinuxPrivileges, FilesAreNeverFilledWithZeros) {
    EXPECT_EQ(enable("SeManageVolumePrivilege").error, os::no_error);
}

TEST(LinuxPrivileges, TheLimitOnLockedMemoryIsRaisedAsFarAsItGoes) {
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_MEMLOCK, &before), 0);
    rlimit low = before;
    low.rlim_cur = std::min<rlim_t>(before.rlim_cur, 4096);
    ASSERT_EQ(setrlimit(RLIMIT_MEMLOCK, &low), 0);
    enable("SeLockMemoryPrivilege");
    rlimit after{};
    ASSERT_EQ(getrlimit(RLIMIT_MEMLOCK, &after), 0);
    EXPECT_EQ(after.rlim_cur, before.rlim_max);
    setrlimit(RLIMIT_MEMLOCK, &before);
}

// Gives up the capability and all but `bytes` of the limit, for good.
void give_up_locking_beyond(rlim_t bytes) {
    const rlimit limit{bytes, bytes};
    if (setrlimit(RLIMIT_MEMLOCK, &limit) != 0) std::_Exit(10);
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct sets[_LINUX_CAPABILITY_U32S_3] = {};
    if (syscall(SYS_capset, &header, sets) != 0) std::_Exit(11);
}

void end_with_answer() {
    std::_Exit(enable("SeLockMemoryPrivilege").error == os::not_all_assigned ? 1 : 0);
}

TEST(LinuxPrivilegesDeathTest, WithoutCapabilityTheLimitDecides) {
    EXPECT_EXIT(
        {
            give_up_locking_beyond(4095);
            end_with_answer();
        },
        testing::ExitedWithCode(1), "");
    EXPECT_EXIT(
        {
            give_up_locking_beyond(4096);
            end_with_answer();
        },
        testing::ExitedWithCode(0), "");
}

}  // namespace
