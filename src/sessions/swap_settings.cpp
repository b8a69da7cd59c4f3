#include "sessions/swap_settings.h"

#include <algorithm>
#include <utility>

#include "console/input.h"
#include "errors/exception.h"
#include "platform/privileges.h"
#include "swap/raid_listing.h"

namespace kelvara {
namespace {

// Where the system does not tell what it has.
constexpr std::uint64_t modest_memory = std::uint64_t{1} << 30;

// What is available changes all the time: in whole steps, it is still there a moment later.
constexpr std::uint64_t memory_step = std::uint64_t{64} << 20;

std::uint64_t default_memory_cap(const PhysicalMemory& memory) {
    const std::uint64_t bytes = memory.available != 0 ? memory.available : memory.total;
    if (bytes == 0) return modest_memory;
    return bytes < memory_step ? bytes : bytes - bytes % memory_step;
}

}  // namespace

SwapSettings::SwapSettings(const PhysicalMemory& memory)
    : memory_cap_(std::min(default_memory_cap(memory), qmp::console::largest_memory_cap)),
      bytes_per_seek_(raid_.default_bytes_per_seek()) {}

void SwapSettings::set_memory_cap(std::uint64_t bytes) {
    memory_cap_ = std::min(bytes, qmp::console::largest_memory_cap);
    refresh();
}

void SwapSettings::set_bytes_per_seek(std::uint64_t bytes) {
    bytes_per_seek_.set(bytes, raid_.default_bytes_per_seek());
}

void SwapSettings::set_raid(qmp::RaidSettings raid) {
    raid_ = std::move(raid);
    refresh();
}

std::string SwapSettings::raid_description() const {
    return raid_.groups().empty() ? "Not Set - Use default path." : qmp::raid_summary(raid_);
}

void SwapSettings::refresh() {
    ComputationSettings::refresh();
    bytes_per_seek_.follow(raid_.default_bytes_per_seek());
}

std::string SwapSettings::obstacle() const {
    return "Swap Mode is not available in this build yet.";
}

void SwapSettings::run() const {
    qmp::require_swap_privileges();
    throw qmp::InvalidParametersException("", obstacle());
}

}  // namespace kelvara
