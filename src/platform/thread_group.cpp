#include "platform/thread_group.h"

#include <optional>
#include <string>

#include "console/console.h"

namespace qmp {
namespace {

bool first_time(std::atomic<bool>& warned) {
    bool expected = false;
    return warned.compare_exchange_strong(expected, true);
}

void warn_of_empty_group() {
    console::print_warning(std::string(os::processor_count_source) + " returned zero.");
    console::println("Further instances of this message will be suppressed.");
}

void warn_of_affinity(const os::GroupAffinity& expected, const os::GroupAffinity& actual) {
    console::print_warning("Warning: Unable to set processor group affinity:");
    console::print_label_line("Expected Group", std::to_string(expected.group));
    console::print_label_line("Expected Mask", expected.mask.text());
    console::print_label_line("Actual Group", std::to_string(actual.group));
    console::print_label_line("Actual Mask", actual.mask.text());
}

}  // namespace

void ThreadGroupBinder::bind(std::uint64_t n) {
    const std::uint32_t groups = system_.active_processor_groups();
    const std::uint32_t group = groups == 0 ? 0 : static_cast<std::uint32_t>(n % groups);
    const std::uint32_t count = system_.active_processors(group);
    if (count == 0) {
        if (first_time(warned_of_empty_group_)) warn_of_empty_group();
        return;
    }
    const os::GroupAffinity wanted = {static_cast<std::uint16_t>(group), os::ProcessorMask::first(count)};
    const bool done = system_.set_thread_group_affinity(wanted);
    const std::optional<os::GroupAffinity> actual = system_.thread_group_affinity();
    if (done && actual == wanted) return;
    if (first_time(warned_of_affinity_)) warn_of_affinity(wanted, actual.value_or(os::GroupAffinity{}));
}

void set_thread_group(std::uint64_t n) {
    static ThreadGroupBinder binder(processor_system());
    binder.bind(n);
}

}  // namespace qmp
