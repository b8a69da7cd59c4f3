// Processors, their groups, and what the calling thread may run on.
//
// Windows numbers processors within groups of at most 64. Elsewhere the processors that the process was
// given at its start are one group, numbered from 0 in the system's order without gaps.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>

namespace qmp::os {

std::uint32_t active_processor_groups();
// 0 for a group that does not exist.
std::uint32_t active_processors(std::uint32_t group);
// Of all groups.
std::uint32_t active_processors();

// Bit k of the mask is processor k of the group. A group of more than 64 processors has no bits for the
// later ones; the mask of all ones then means the whole group.
struct GroupAffinity {
    std::uint16_t group = 0;
    std::uint64_t mask = 0;
    auto operator<=>(const GroupAffinity&) const = default;
};

// The calling thread's.
std::optional<GroupAffinity> thread_group_affinity();
// False when the system refuses, or when the mask names no processor of the group.
bool set_thread_group_affinity(GroupAffinity affinity);

// Binds the calling thread to the lowest processor that the process may use, and lets it go again to all
// of them.
bool pin_thread_to_lowest_processor();
bool unpin_thread();

// The calling thread's priority: -3 idle, -2 lowest, -1 below normal, 0 normal, 1 above normal,
// 2 highest, 3 time critical, relative to the process's own. False when the system refuses.
bool set_thread_priority(int priority);

}  // namespace qmp::os
