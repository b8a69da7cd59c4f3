// The hardware behind the kernel's clocks.
//
// The counter of this system runs at 1 GHz whatever it is made from, so that its frequency tells nothing.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qmp::os {

// The kernel's name of its clock source, read from this file, as os/clock.h names sources. The clocks of
// hypervisors, which the kernel names after them, are none of those. Nothing when the file cannot be read.
std::optional<std::string_view> clock_source_in(const std::string& path);

}  // namespace qmp::os
