#include "platform/os/threads.h"

#include <windows.h>

namespace qmp::os {
namespace {

std::uint64_t lowest_bit(std::uint64_t mask) {
    return mask & (0 - mask);
}

GROUP_AFFINITY group_affinity(std::uint16_t group, std::uint64_t mask) {
    GROUP_AFFINITY affinity{};
    affinity.Group = group;
    affinity.Mask = mask;
    return affinity;
}

bool bind_this_thread(const GROUP_AFFINITY& affinity) {
    return affinity.Mask != 0 && SetThreadGroupAffinity(GetCurrentThread(), &affinity, nullptr) != 0;
}

// 0 on failure, and for a process whose threads run in several groups.
std::uint64_t process_mask() {
    DWORD_PTR process = 0;
    DWORD_PTR system = 0;
    return GetProcessAffinityMask(GetCurrentProcess(), &process, &system) ? process : 0;
}

// Where the process has no mask of its own, its thread's group stands for it.
GROUP_AFFINITY whole_group_of_this_thread() {
    GROUP_AFFINITY affinity{};
    if (!GetThreadGroupAffinity(GetCurrentThread(), &affinity)) return {};
    const std::uint32_t count = active_processors(affinity.Group);
    return group_affinity(affinity.Group, count >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1);
}

}  // namespace

const std::string_view processor_count_source = "GetActiveProcessorCount()";

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
    return GroupAffinity{affinity.Group, ProcessorMask(affinity.Mask)};
}

bool set_thread_group_affinity(const GroupAffinity& affinity) {
    const auto word = affinity.mask.word();
    return word && bind_this_thread(group_affinity(affinity.group, *word));
}

bool pin_thread_to_lowest_processor() {
    if (const std::uint64_t mask = process_mask()) {
        return SetThreadAffinityMask(GetCurrentThread(), lowest_bit(mask)) != 0;
    }
    const GROUP_AFFINITY group = whole_group_of_this_thread();
    return bind_this_thread(group_affinity(group.Group, lowest_bit(group.Mask)));
}

bool unpin_thread() {
    if (const std::uint64_t mask = process_mask())
        return SetThreadAffinityMask(GetCurrentThread(), mask) != 0;
    return bind_this_thread(whole_group_of_this_thread());
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
