#include "platform/thread_group.h"

#include <atomic>
#include <optional>

#include "console/console.h"
#include "platform/os/threads.h"

namespace qmp {
namespace {

bool first_time(std::atomic<bool>& warned) {
    bool expected = false;
    return warned.compare_exchange_strong(expected, true);
}

void warn_of_empty_group() {
    static std::atomic<bool> warned{false};
    if (!first_time(warned)) return;
    console::print_warning("GetActiveProcessorCount() returned zero.");
    console::println("Further instances of this message will be suppressed.");
}

void warn_of_affinity(const os::GroupAffinity& expected, const std::optional<os::GroupAffinity>& actual) {
    static std::atomic<bool> warned{false};
    if (!first_time(warned)) return;
    const os::GroupAffinity found = actual.value_or(os::GroupAffinity{});
    console::print_warning("Warning: Unable to set processor group affinity:");
    console::print_label_line("Expected Group", std::to_string(expected.group));
    console::print_label_line("Expected Mask", std::to_string(expected.mask));
    console::print_label_line("Actual Group", std::to_string(found.group));
    console::print_label_line("Actual Mask", std::to_string(found.mask));
}

}  // namespace

void set_thread_group(std::uint64_t n) {
    const std::uint32_t group = static_cast<std::uint32_t>(n % os::active_processor_groups());
    const std::uint32_t count = os::active_processors(group);
    if (count == 0) {
        warn_of_empty_group();
        return;
    }
    os::GroupAffinity wanted;
    wanted.group = static_cast<std::uint16_t>(group);
    wanted.mask = count >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
    const bool done = os::set_thread_group_affinity(wanted);
    const std::optional<os::GroupAffinity> actual = os::thread_group_affinity();
    if (!done || actual != wanted) warn_of_affinity(wanted, actual);
}

}  // namespace qmp
