// The layout that the menus of exchangeable components share.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "console/console.h"

namespace qmp::menu {

// An option's line: its label, white, and its present value in a column that all menus share.
void print_option(std::string_view label, std::string_view value, console::Colour colour);

// A title, the numbered names, and the choice: a number from 0 to the last.
std::uint64_t choose(std::string_view title, std::span<const std::string> names);

}  // namespace qmp::menu
