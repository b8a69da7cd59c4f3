#include "platform/os/threads.h"

#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>
#include <vector>

#include "platform/os/linux/control_group.h"
#include "platform/os/linux/processor_numbering.h"

namespace qmp::os {
namespace {

// The system's numbers of the processors that the calling thread may run on, ascending; empty on failure.
std::vector<std::uint32_t> processors_of_this_thread() {
    for (std::size_t words = 16; words <= 1 << 14; words *= 2) {
        std::vector<std::uint64_t> set(words, 0);
        const std::size_t bytes = words * sizeof(std::uint64_t);
        if (sched_getaffinity(0, bytes, reinterpret_cast<cpu_set_t*>(set.data())) == 0) {
            std::vector<std::uint32_t> list;
            for (std::uint32_t i = 0; i < words * 64; ++i) {
                if ((set[i / 64] >> i % 64 & 1) != 0) list.push_back(i);
            }
            return list;
        }
        if (errno != EINVAL) break;  // EINVAL: the kernel's own sets are larger
    }
    return {};
}

// At least one processor.
bool bind_this_thread(const std::vector<std::uint32_t>& processors) {
    std::vector<std::uint64_t> set(processors.back() / 64 + 1, 0);
    for (const std::uint32_t processor : processors) {
        set[processor / 64] |= std::uint64_t{1} << processor % 64;
    }
    return sched_setaffinity(0, set.size() * sizeof(std::uint64_t),
                             reinterpret_cast<const cpu_set_t*>(set.data())) == 0;
}

// Read before main, before anything narrows a thread's own set.
[[maybe_unused]] const std::uint32_t read_before_main = process_numbering().size();

int nice_of_process() {
    static const int value = getpriority(PRIO_PROCESS, static_cast<id_t>(getpid()));
    return value;
}

}  // namespace

const ProcessorNumbering& process_numbering() {
    static const ProcessorNumbering numbering = [] {
        std::vector<std::uint32_t> processors = processors_of_this_thread();
        if (processors.empty()) processors.push_back(0);
        return ProcessorNumbering(std::move(processors));
    }();
    return numbering;
}

const std::string_view processor_count_source = "sched_getaffinity()";

std::uint32_t active_processor_groups() {
    return 1;
}

std::uint32_t active_processors(std::uint32_t group) {
    return group == 0 ? process_numbering().size() : 0;
}

std::uint32_t active_processors() {
    static const auto count = static_cast<std::uint32_t>(
        std::min<std::uint64_t>(process_numbering().size(), control_group_processors()));
    return count;
}

std::optional<GroupAffinity> thread_group_affinity() {
    GroupAffinity affinity;
    affinity.mask = process_numbering().mask_of(processors_of_this_thread());
    if (affinity.mask.empty()) return std::nullopt;
    return affinity;
}

bool set_thread_group_affinity(const GroupAffinity& affinity) {
    if (affinity.group != 0 || affinity.mask.empty()) return false;
    const auto processors = process_numbering().processors_of(affinity.mask);
    return processors && bind_this_thread(*processors);
}

bool pin_thread_to_lowest_processor() {
    return set_thread_group_affinity({0, ProcessorMask::of(0)});
}

bool unpin_thread() {
    return set_thread_group_affinity({0, ProcessorMask::first(process_numbering().size())});
}

bool set_thread_priority(int priority) {
    constexpr int lowest_nice = 19;
    constexpr int highest_nice = -20;
    // Steps of five are the distances between the classes of a desktop's system monitor.
    int nice_value = 0;
    switch (priority) {
        case -3:
            nice_value = lowest_nice;
            break;
        case 3:
            nice_value = highest_nice;
            break;
        case -2:
        case -1:
        case 0:
        case 1:
        case 2:
            nice_value = nice_of_process() - 5 * priority;
            break;
        default:
            return false;
    }
    nice_value = std::clamp(nice_value, highest_nice, lowest_nice);
    // In this system a priority belongs to a thread, in spite of the call's name.
    const auto thread = static_cast<id_t>(syscall(SYS_gettid));
    return setpriority(PRIO_PROCESS, thread, nice_value) == 0;
}

}  // namespace qmp::os
