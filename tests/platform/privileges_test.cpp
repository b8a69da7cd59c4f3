#include "platform/privileges.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "support/console.h"
#include "support/fatal.h"

namespace {

namespace os = qmp::os;
using kelvara_test::printed_by;

// A process whose token answers as a test wants.
class FakeToken final : public os::TokenCalls {
  public:
    Token open() const override {
        ++opened;
        return {open_error, 77};
    }
    Privilege look_up(std::string_view name) const override {
        looked_up = name;
        return {look_up_error, 5};
    }
    Adjustment adjust(std::intptr_t token, std::uint64_t privilege, bool enable) const override {
        EXPECT_EQ(token, 77);
        EXPECT_EQ(privilege, 5u);
        if (adjustment.succeeded && adjustment.error == os::no_error) enabled = enable;
        return adjustment;
    }
    bool close(std::intptr_t token) const override {
        EXPECT_EQ(token, 77);
        ++closed;
        return close_succeeds;
    }

    os::ErrorCode open_error = os::no_error;
    os::ErrorCode look_up_error = os::no_error;
    Adjustment adjustment = {true, os::no_error};
    bool close_succeeds = true;

    mutable std::atomic<int> opened = 0;
    mutable int closed = 0;
    mutable bool enabled = false;
    mutable std::string looked_up;
};

struct Result {
    bool held;
    std::string printed;
};

Result enabling(const FakeToken& token, bool enable = true) {
    Result result{};
    result.printed =
        printed_by([&] { result.held = qmp::enable_privilege(token, "SeSomePrivilege", enable); });
    return result;
}

TEST(EnablePrivilege, AHeldButDisabledOneIsEnabled) {
    const FakeToken token;
    const Result result = enabling(token);
    EXPECT_TRUE(result.held);
    EXPECT_EQ(result.printed, "");
    EXPECT_TRUE(token.enabled);
    EXPECT_EQ(token.looked_up, "SeSomePrivilege");
    EXPECT_EQ(token.closed, 1);
    enabling(token, false);
    EXPECT_FALSE(token.enabled);
}

TEST(EnablePrivilege, OneThatIsNotAssignedIsNotHeld) {
    FakeToken token;
    token.adjustment = {true, os::not_all_assigned};
    const Result result = enabling(token);
    EXPECT_FALSE(result.held);
    EXPECT_EQ(result.printed, "");
    EXPECT_EQ(token.closed, 1);
}

TEST(EnablePrivilege, EveryFailingCallIsNamedWithItsCode) {
    FakeToken no_token;
    no_token.open_error = os::access_denied;
    Result result = enabling(no_token);
    EXPECT_FALSE(result.held);
    EXPECT_EQ(result.printed, "OpenProcessToken error: 5\n");
    EXPECT_EQ(no_token.closed, 0);

    FakeToken unknown;
    unknown.look_up_error = os::no_such_privilege;
    result = enabling(unknown);
    EXPECT_FALSE(result.held);
    EXPECT_EQ(result.printed, "LookupPrivilegeValue error: 1313\n");
    EXPECT_EQ(unknown.closed, 1);

    FakeToken refused;
    refused.adjustment = {false, os::invalid_handle};
    result = enabling(refused);
    EXPECT_FALSE(result.held);
    EXPECT_EQ(result.printed, "AdjustTokenPrivileges error: 6\n");
    EXPECT_EQ(refused.closed, 1);
}

TEST(EnablePrivilege, AHandleThatCannotBeClosedLeavesTheResult) {
    FakeToken token;
    token.close_succeeds = false;
    Result result = enabling(token);
    EXPECT_TRUE(result.held);
    EXPECT_EQ(result.printed, "\nUnable to close handle\n");
    token.adjustment = {true, os::not_all_assigned};
    result = enabling(token);
    EXPECT_FALSE(result.held);
    EXPECT_EQ(result.printed, "\nUnable to close handle\n");
}

TEST(Privilege, IsAskedForOnceByWhoeverComesFirst) {
    FakeToken token;
    qmp::Privilege privilege(token, "SeSomePrivilege");
    EXPECT_EQ(token.opened, 0);
    std::atomic<int> held = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) threads.emplace_back([&] { held += privilege.held() ? 1 : 0; });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(held, 8);
    EXPECT_EQ(token.opened, 1);
    token.adjustment = {true, os::not_all_assigned};
    EXPECT_TRUE(privilege.held());
}

TEST(Privilege, TheSystemsAnswersStay) {
    EXPECT_EQ(qmp::has_manage_volume_privilege(), qmp::has_manage_volume_privilege());
    EXPECT_EQ(qmp::has_lock_memory_privilege(), qmp::lock_memory_privilege().held());
}

TEST(SwapPrivileges, NothingIsPrintedWhereTheyAreHeld) {
    const FakeToken token;
    qmp::Privilege volume(token, "SeManageVolumePrivilege");
    EXPECT_EQ(printed_by([&] { EXPECT_TRUE(qmp::require_swap_privileges(volume)); }), "");
    EXPECT_EQ(printed_by([&] { qmp::warn_without_swap_privileges(volume); }), "");
}

TEST(SwapPrivileges, AMissingOneIsWarnedOf) {
    FakeToken token;
    token.adjustment = {true, os::not_all_assigned};
    qmp::Privilege volume(token, "SeManageVolumePrivilege");
    EXPECT_EQ(printed_by([&] { qmp::warn_without_swap_privileges(volume); }),
              "Warning: Swap mode requires administrator privileges to be efficient.\n"
              "Please run Kelvara as administrator with SeManageVolumePrivilege.\n\n");
}

#if GTEST_HAS_DEATH_TEST
TEST(SwapPrivilegesDeathTest, AMissingOneEndsTheProgram) {
    FakeToken token;
    token.adjustment = {true, os::not_all_assigned};
    qmp::Privilege volume(token, "SeManageVolumePrivilege");
    EXPECT_FATAL(qmp::require_swap_privileges(volume),
                 "^Cannot Start: Swap mode requires administrator privileges.\n"
                 "Please run Kelvara as administrator with SeManageVolumePrivilege.\n\n$");
}
#endif

}  // namespace
