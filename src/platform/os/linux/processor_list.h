// The kernel's notation for sets of processors.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace qmp::os {

// "0-3,8,10-11" as ascending numbers; an empty text is an empty set. White space around the list and its
// entries is skipped. Nothing when the text is no such list, or names processors beyond any kernel's.
std::optional<std::vector<std::uint32_t>> parse_processor_list(std::string_view text);

}  // namespace qmp::os
