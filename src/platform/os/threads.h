// Processors, their groups, and what the calling thread may run on.
//
// Windows numbers processors within groups of at most 64. Elsewhere the processors that the process was
// given at its start are one group, numbered from 0 in the system's order without gaps: processors that
// are switched off or belong to others have no number.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/os/processor_mask.h"

namespace qmp::os {

std::uint32_t active_processor_groups();
// The processors that a thread in the group can be bound to; 0 for a group that does not exist.
std::uint32_t active_processors(std::uint32_t group);
// How many processors the process can keep busy at a time: those of all groups, or fewer where the system
// rations its time (the quota of a container). A ration narrows no thread's choice of processors, so the
// numbers of the groups do not know it. Read once.
std::uint32_t active_processors();

// What tells the counts, as a message names it: "GetActiveProcessorCount()".
extern const std::string_view processor_count_source;

struct GroupAffinity {
    std::uint16_t group = 0;
    ProcessorMask mask;
    auto operator<=>(const GroupAffinity&) const = default;
};

// The calling thread's.
std::optional<GroupAffinity> thread_group_affinity();
// False when the system refuses, and when the mask is empty or names a processor that the group has not.
bool set_thread_group_affinity(const GroupAffinity& affinity);

// Binds the calling thread to the lowest processor that the process may use, and lets it go again to all
// of them.
bool pin_thread_to_lowest_processor();
bool unpin_thread();

// The calling thread's priority: -3 idle, -2 lowest, -1 below normal, 0 normal, 1 above normal,
// 2 highest, 3 time critical, relative to the process's own. False when the system refuses.
bool set_thread_priority(int priority);

}  // namespace qmp::os
