// What the system lets a process do only when it asks for it: the privileges of the process's token.
//
// Where the system knows no tokens, the two privileges that the program asks for stand for what it has
// instead, under the same names: "SeManageVolumePrivilege" is always there, since files can be allocated
// without revealing what the disk held; "SeLockMemoryPrivilege" is held by a process that may lock at least
// one page, and enabling it raises what it may lock as far as that goes.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/os/error_codes.h"

namespace qmp::os {

// The calls that enabling a privilege takes. They may be made from any thread.
class TokenCalls {
  public:
    virtual ~TokenCalls() = default;

    struct Token {
        ErrorCode error = no_error;
        std::intptr_t handle = 0;
    };
    // The process's own, with the right to adjust privileges.
    virtual Token open() const = 0;

    struct Privilege {
        ErrorCode error = no_error;
        std::uint64_t identifier = 0;
    };
    virtual Privilege look_up(std::string_view name) const = 0;

    struct Adjustment {
        bool succeeded = false;
        // Also of a success: not_all_assigned when the process does not hold the privilege.
        ErrorCode error = no_error;
    };
    virtual Adjustment adjust(std::intptr_t token, std::uint64_t privilege, bool enable) const = 0;

    virtual bool close(std::intptr_t token) const = 0;
};

const TokenCalls& token_calls();

// What a user knows the right to lock memory as.
std::string_view lock_memory_permission();

}  // namespace qmp::os
