#include "platform/os/privileges.h"

#include <gtest/gtest.h>

namespace {

namespace os = qmp::os;

TEST(OsPrivileges, TheTwoThatTheProgramAsksForAreKnown) {
    const os::TokenCalls& calls = os::token_calls();
    const os::TokenCalls::Token token = calls.open();
    ASSERT_EQ(token.error, os::no_error);
    const auto volume = calls.look_up("SeManageVolumePrivilege");
    const auto locking = calls.look_up("SeLockMemoryPrivilege");
    EXPECT_EQ(volume.error, os::no_error);
    EXPECT_EQ(locking.error, os::no_error);
    EXPECT_NE(volume.identifier, locking.identifier);
    for (const auto& privilege : {volume, locking}) {
        const auto adjustment = calls.adjust(token.handle, privilege.identifier, true);
        EXPECT_TRUE(adjustment.succeeded);
        EXPECT_TRUE(adjustment.error == os::no_error || adjustment.error == os::not_all_assigned);
    }
    EXPECT_TRUE(calls.close(token.handle));
}

TEST(OsPrivileges, AnUnknownNameIsAnError) {
    EXPECT_EQ(os::token_calls().look_up("SeNoSuchPrivilege").error, os::no_such_privilege);
}

}  // namespace
