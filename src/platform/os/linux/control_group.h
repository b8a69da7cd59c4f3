// The memory that the process's control group still allows it.
#pragma once

#include <cstdint>

namespace qmp::os {

// Bytes below the limit, pages of the file cache that would give way included; the largest number when
// the group sets no limit.
std::uint64_t control_group_memory_left();

}  // namespace qmp::os
