#include "platform/os/privileges.h"

#include <linux/capability.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace qmp::os {
namespace {

constexpr std::uint64_t manage_volume = 1;
constexpr std::uint64_t lock_memory = 2;

bool has_capability(unsigned capability) {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct sets[_LINUX_CAPABILITY_U32S_3] = {};
    if (syscall(SYS_capget, &header, sets) != 0) return false;
    return (sets[capability / 32].effective >> (capability % 32) & 1) != 0;
}

// Raises the soft limit to the hard one, which every process may do.
bool limit_allows_locking() {
    rlimit limit{};
    if (getrlimit(RLIMIT_MEMLOCK, &limit) != 0) return false;
    if (limit.rlim_cur != limit.rlim_max) {
        rlimit raised = limit;
        raised.rlim_cur = limit.rlim_max;
        if (setrlimit(RLIMIT_MEMLOCK, &raised) == 0) limit = raised;
    }
    return limit.rlim_cur >= static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

class SystemTokenCalls final : public TokenCalls {
  public:
    Token open() const override { return {}; }

    Privilege look_up(std::string_view name) const override {
        if (name == "SeManageVolumePrivilege") return {no_error, manage_volume};
        if (name == "SeLockMemoryPrivilege") return {no_error, lock_memory};
        return {no_such_privilege, 0};
    }

    Adjustment adjust(std::intptr_t, std::uint64_t privilege, bool enable) const override {
        if (!enable || privilege == manage_volume) return {true, no_error};
        const bool limit = limit_allows_locking();
        return {true, limit || has_capability(CAP_IPC_LOCK) ? no_error : not_all_assigned};
    }

    bool close(std::intptr_t) const override { return true; }
};

}  // namespace

const TokenCalls& token_calls() {
    static const SystemTokenCalls calls;
    return calls;
}

std::string_view lock_memory_permission() {
    return "CAP_IPC_LOCK";
}

}  // namespace qmp::os
