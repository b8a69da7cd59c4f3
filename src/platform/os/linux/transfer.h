// Whole transfers from calls that may move less than they are asked for.
#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>

#include "platform/os/file.h"
#include "platform/os/linux/errno_codes.h"

namespace qmp::os {

// Runs `call(done, count)` until `bytes` are moved, it moves nothing, or it fails.
template <typename Call>
Transfer transfer(std::uint64_t bytes, ErrorCode fault, Call call) {
    Transfer result;
    while (result.bytes < bytes) {
        const ssize_t moved = call(result.bytes, std::min(bytes - result.bytes, largest_transfer));
        if (moved > 0) {
            result.bytes += static_cast<std::uint64_t>(moved);
        } else if (moved == 0) {
            break;
        } else if (errno != EINTR) {
            result.error = code_of_errno(errno, fault);
            break;
        }
    }
    return result;
}

inline Transfer write_all(int descriptor, const void* buffer, std::uint64_t bytes) {
    Transfer result = transfer(bytes, write_fault, [&](std::uint64_t done, std::uint64_t count) {
        return ::write(descriptor, static_cast<const char*>(buffer) + done, count);
    });
    if (result.bytes < bytes && result.error == no_error) result.error = disk_full;
    return result;
}

}  // namespace qmp::os
