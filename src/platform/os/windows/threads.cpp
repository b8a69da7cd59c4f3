#include "platform/os/threads.h"

#include <windows.h>

namespace qmp::os {
namespace {

std::uint64_t lowest_bit(std::uint64_t mask) {
    return mask & (0 - mask);
}

// 0 on failure, and for a process whose threads run in several groups.
std::uint64_t process_mask() {
    DWORD_PTR process = 0;
    DWORD_PTR system = 0;
    return GetProcessAffinityMask(GetCurrentProcess(), &process, &system) ? process : 0;
}

// Where the process has no mask of its own, its thread's group stands for it.
GroupAffinity whole_group_of_this_thread() {
    const auto affinity = thread_group_affinity();
    if (!affinity) return {};
    const std::uint32_t count = active_processors(affinity->group);
    return {affinity->group, count >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1};
}

}  // namespace

std::uint32_t active_processor_groups() {
    return GetActiveProcessorGroupCount();
}

std::uint32_t active_processors(std::uint32_t group) {
    if (group >= active_processor_groups()) return 0;
    return GetActiveProcessorCount(static_cast<WORD>(group));
}

std::uint32_t active_processors() {
    return GetActiveProcessorCount(ALL_PROCESSOR_GROUPS);
}

std::optional<GroupAffinity> thread_group_affinity() {
    GROUP_AFFINITY affinity{};
    if (!GetThreadGroupAffinity(GetCurrentThread(), &affinity)) return std::nullopt;
    return GroupAffinity{affinity.Group, affinity.Mask};
}

bool set_thread_group_affinity(GroupAffinity affinity) {
    GROUP_AFFINITY wanted{};
    wanted.Group = affinity.group;
    wanted.Mask = affinity.mask;
    return SetThreadGroupAffinity(GetCurrentThread(), &wanted, nullptr) != 0;
}

bool pin_thread_to_lowest_processor() {
    if (const std::uint64_t mask = process_mask()) {
        return SetThreadAffinityMask(GetCurrentThread(), lowest_bit(mask)) != 0;
    }
    const GroupAffinity group = whole_group_of_this_thread();
    return group.mask != 0 && set_thread_group_affinity({group.group, lowest_bit(group.mask)});
}

bool unpin_thread() {
    if (const std::uint64_t mask = process_mask())
        return SetThreadAffinityMask(GetCurrentThread(), mask) != 0;
    const GroupAffinity group = whole_group_of_this_thread();
    return group.mask != 0 && set_thread_group_affinity(group);
}

bool set_thread_priority(int priority) {
    static constexpr int levels[] = {THREAD_PRIORITY_IDLE,         THREAD_PRIORITY_LOWEST,
                                     THREAD_PRIORITY_BELOW_NORMAL, THREAD_PRIORITY_NORMAL,
                                     THREAD_PRIORITY_ABOVE_NORMAL, THREAD_PRIORITY_HIGHEST,
                                     THREAD_PRIORITY_TIME_CRITICAL};
    if (priority < -3 || priority > 3) return false;
    return SetThreadPriority(GetCurrentThread(), levels[priority + 3]) != 0;
}

}  // namespace qmp::os
