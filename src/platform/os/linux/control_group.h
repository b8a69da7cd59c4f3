// What the process's control group still allows it: memory and processor time.
//
// A group is bound by the limits of all groups above it as well. Both versions of the kernel's interface are
// read.
#pragma once

#include <cstdint>
#include <string>

namespace qmp::os {

// Where the kernel shows the groups.
struct ControlGroupFiles {
    std::string membership = "/proc/self/cgroup";
    std::string mount = "/sys/fs/cgroup";
};

// Bytes below the limit, pages of the file cache that would give way included; the largest number when
// the group sets no limit.
std::uint64_t control_group_memory_left(const ControlGroupFiles& files = {});

// The processors that the group's quota of processor time can keep busy, a part of one counted as a whole,
// at least 1; the largest number when the group sets no quota.
std::uint64_t control_group_processors(const ControlGroupFiles& files = {});

}  // namespace qmp::os
