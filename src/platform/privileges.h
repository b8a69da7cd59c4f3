// The two privileges that change what the program can do: setting a file's length without its being
// filled with zeros, and large or locked pages.
//
// A missing one reads as false and is never fatal by itself; only what cannot do without it refuses to start.
#pragma once

#include <mutex>
#include <string_view>

#include "platform/os/privileges.h"

namespace qmp {

// True when the privilege is now enabled. Failing calls are reported on the console.
bool enable_privilege(const os::TokenCalls& calls, std::string_view name, bool enable);

// A privilege that the process tries to enable when it is first asked for; the answer then stays. Any
// thread may ask.
class Privilege {
  public:
    // The name must outlive the object.
    Privilege(const os::TokenCalls& calls, std::string_view name) : calls_(calls), name_(name) {}
    bool held();

  private:
    const os::TokenCalls& calls_;
    std::string_view name_;
    std::once_flag asked_;
    bool held_ = false;
};

// "SeManageVolumePrivilege" and "SeLockMemoryPrivilege" of this process.
Privilege& manage_volume_privilege();
Privilege& lock_memory_privilege();

bool has_manage_volume_privilege();
bool has_lock_memory_privilege();

// Warns when swap files would be slow to allocate because the volume privilege is missing.
void warn_without_swap_privileges(Privilege& volume = manage_volume_privilege());
// True, or the end of the program with exit code 1 and a message: swap files need the volume privilege.
bool require_swap_privileges(Privilege& volume = manage_volume_privilege());

}  // namespace qmp
