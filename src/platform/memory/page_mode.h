// Whether an allocator's pages are to be large, or locked in physical memory.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qmp {

// Saved settings hold the numbers; one that is none of these is kept as it is, and allocates as `attempt`.
enum class PageMode : std::int32_t { disabled = 0, attempt = 1, forced = 2 };

// "disabled", "attempt", "forced", as in configuration files. Anything else is an InvalidParametersException:
// "Invalid Mode", or "Invalid Mode: " and the text.
std::string mode_to_string(PageMode mode);
PageMode string_to_mode(std::string_view text);

// Disabled, Attempt, Forced and round again; from any other value to Attempt.
PageMode next_mode(PageMode mode);

// An option's line in a menu.
void print_mode_option(std::string_view label, PageMode mode);

}  // namespace qmp
