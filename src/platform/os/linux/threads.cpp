#include "platform/os/threads.h"

#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

namespace qmp::os {
namespace {

// A set of processors by the system's numbers, as large as the kernel asks for.
class ProcessorSet {
  public:
    // The calling thread's; empty on failure.
    static ProcessorSet of_this_thread() {
        for (std::size_t words = 16; words <= 1 << 14; words *= 2) {
            ProcessorSet set;
            set.words_.assign(words, 0);
            if (sched_getaffinity(0, set.bytes(), set.data()) == 0) return set;
            if (errno != EINVAL) break;  // EINVAL: the kernel's own sets are larger
        }
        return {};
    }

    bool bind_this_thread() const { return sched_setaffinity(0, bytes(), data()) == 0; }

    void insert(std::uint32_t processor) {
        if (processor / 64 >= words_.size()) words_.resize(processor / 64 + 1, 0);
        words_[processor / 64] |= std::uint64_t{1} << (processor % 64);
    }
    bool contains(std::uint32_t processor) const {
        return processor / 64 < words_.size() && (words_[processor / 64] >> (processor % 64) & 1) != 0;
    }
    std::vector<std::uint32_t> processors() const {
        std::vector<std::uint32_t> list;
        for (std::uint32_t i = 0; i < words_.size() * 64; ++i) {
            if (contains(i)) list.push_back(i);
        }
        return list;
    }

  private:
    std::size_t bytes() const { return words_.size() * sizeof(std::uint64_t); }
    cpu_set_t* data() { return reinterpret_cast<cpu_set_t*>(words_.data()); }
    const cpu_set_t* data() const { return reinterpret_cast<const cpu_set_t*>(words_.data()); }

    std::vector<std::uint64_t> words_;
};

// The processors of the process, ascending. Read once, before anything narrows a thread's own set: what
// a thread is bound to says nothing about the others.
const std::vector<std::uint32_t>& process_processors() {
    static const std::vector<std::uint32_t> list = [] {
        std::vector<std::uint32_t> processors = ProcessorSet::of_this_thread().processors();
        if (processors.empty()) processors.push_back(0);
        return processors;
    }();
    return list;
}
[[maybe_unused]] const std::size_t read_before_main = process_processors().size();

std::uint64_t mask_of_all(std::size_t count) {
    return count >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

int nice_of_process() {
    static const int value = getpriority(PRIO_PROCESS, static_cast<id_t>(getpid()));
    return value;
}

}  // namespace

std::uint32_t active_processor_groups() {
    return 1;
}

std::uint32_t active_processors(std::uint32_t group) {
    return group == 0 ? static_cast<std::uint32_t>(process_processors().size()) : 0;
}

std::uint32_t active_processors() {
    return active_processors(0);
}

std::optional<GroupAffinity> thread_group_affinity() {
    const ProcessorSet bound = ProcessorSet::of_this_thread();
    const auto& all = process_processors();
    GroupAffinity affinity;
    for (std::size_t k = 0; k < all.size() && k < 64; ++k) {
        if (bound.contains(all[k])) affinity.mask |= std::uint64_t{1} << k;
    }
    // The first 64 of a larger group are not the whole group.
    if (all.size() > 64 && affinity.mask == ~std::uint64_t{0} && !bound.contains(all.back()))
        return std::nullopt;
    if (affinity.mask == 0) return std::nullopt;
    return affinity;
}

bool set_thread_group_affinity(GroupAffinity affinity) {
    const auto& all = process_processors();
    if (affinity.group != 0 || affinity.mask == 0) return false;
    if ((affinity.mask & ~mask_of_all(all.size())) != 0) return false;
    const bool whole_group = affinity.mask == mask_of_all(all.size());
    ProcessorSet set;
    for (std::size_t k = 0; k < all.size(); ++k) {
        if (whole_group || (k < 64 && (affinity.mask >> k & 1) != 0)) set.insert(all[k]);
    }
    return set.bind_this_thread();
}

bool pin_thread_to_lowest_processor() {
    return set_thread_group_affinity({0, 1});
}

bool unpin_thread() {
    return set_thread_group_affinity({0, mask_of_all(process_processors().size())});
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
