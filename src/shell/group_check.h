// Whether the processors are spread evenly over the system's processor groups.
#pragma once

#include <cstdint>
#include <span>

namespace kelvara {

// Warns and waits for a key when the groups differ in size: work is dealt out evenly, so a smaller group
// holds the others up.
void check_processor_groups();
// The same for groups of the given sizes.
void check_processor_groups(std::span<const std::uint32_t> processors);

}  // namespace kelvara
