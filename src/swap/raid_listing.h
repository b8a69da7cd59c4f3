// The swap files' settings as the screens show them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "swap/raid_settings.h"

namespace qmp {

// In a few words: "RAID 0 with 4 paths".
std::string raid_summary(const RaidSettings& settings);

// "Current Raid-File Settings", every group and path. The bytes are what each group has to hold; nothing
// where that is not known.
void print_raid_settings(const RaidSettings& settings, std::optional<std::uint64_t> bytes_per_group);

}  // namespace qmp
