#include "platform/privileges.h"

#include <string>

#include "console/console.h"

namespace qmp {
namespace {

constexpr std::string_view how_to_get_swap_privileges =
    "Please run Kelvara as administrator with SeManageVolumePrivilege.";

void print_call_error(std::string_view call, os::ErrorCode code) {
    console::print_label_line(call, std::to_string(code));
}

bool enable_in_token(const os::TokenCalls& calls, std::intptr_t token, std::string_view name, bool enable) {
    const os::TokenCalls::Privilege privilege = calls.look_up(name);
    if (privilege.error != os::no_error) {
        print_call_error("LookupPrivilegeValue error", privilege.error);
        return false;
    }
    const os::TokenCalls::Adjustment adjustment = calls.adjust(token, privilege.identifier, enable);
    if (!adjustment.succeeded) {
        print_call_error("AdjustTokenPrivileges error", adjustment.error);
        return false;
    }
    // The call succeeds as well when the process does not hold the privilege.
    return adjustment.error != os::not_all_assigned;
}

}  // namespace

bool enable_privilege(const os::TokenCalls& calls, std::string_view name, bool enable) {
    const os::TokenCalls::Token token = calls.open();
    if (token.error != os::no_error) {
        print_call_error("OpenProcessToken error", token.error);
        return false;
    }
    const bool enabled = enable_in_token(calls, token.handle, name, enable);
    if (!calls.close(token.handle)) console::print_warning("Unable to close handle");
    return enabled;
}

bool Privilege::held() {
    std::call_once(asked_, [this] { held_ = enable_privilege(calls_, name_, true); });
    return held_;
}

Privilege& manage_volume_privilege() {
    static Privilege privilege(os::token_calls(), "SeManageVolumePrivilege");
    return privilege;
}

Privilege& lock_memory_privilege() {
    static Privilege privilege(os::token_calls(), "SeLockMemoryPrivilege");
    return privilege;
}

bool has_manage_volume_privilege() {
    return manage_volume_privilege().held();
}

bool has_lock_memory_privilege() {
    return lock_memory_privilege().held();
}

void warn_without_swap_privileges(Privilege& volume) {
    if (volume.held()) return;
    console::println("Warning: Swap mode requires administrator privileges to be efficient.", 'R');
    console::println(how_to_get_swap_privileges, 'w');
    console::newline();
}

bool require_swap_privileges(Privilege& volume) {
    if (volume.held()) return true;
    console::println("Cannot Start: Swap mode requires administrator privileges.", 'R');
    console::println(how_to_get_swap_privileges, 'w');
    console::newline();
    console::terminate(1);
}

}  // namespace qmp
