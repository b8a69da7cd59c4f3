// Texts for the operating system's error codes, and the two ways of reporting one.
//
// The codes are those of Windows on every system; the seam to the operating system translates its own.
#pragma once

#include <cstdint>
#include <string>

namespace qmp {

// Prints "Windows Error Code" with the code and its text, in red. Throws nothing.
void print_os_error(std::uint32_t code);

// The text that a failure with this code is raised with: "Path does not exist."
std::string os_error_text(std::uint32_t code);

// Throws a Raid03Exception with an empty function, the code's message, the path and the code.
[[noreturn]] void throw_os_error(std::uint32_t code, const std::string& path);

}  // namespace qmp
