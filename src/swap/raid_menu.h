// The dialogues in which the user builds the swap configuration, and its form on the command line.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "config/command_line.h"
#include "swap/raid_settings.h"

namespace qmp {

// The swap configuration menu, repeated until the user is done; a configuration that is not valid cannot be
// left. The bytes are those of print_raid_settings().
void edit_raid_settings(RaidSettings& settings, std::optional<std::uint64_t> bytes_per_group);

// "raid0" or "raid3", and at least one folder: all the arguments up to the next that begins with '-'. The
// mode is `mode`, or the next argument when that is empty. Returns an error text, empty for success; a
// missing argument is a CommandLineException.
std::string read_raid_arguments(RaidSettings& settings, std::string mode, kelvara::CommandLine& command_line);

}  // namespace qmp
