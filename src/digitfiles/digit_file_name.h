// The name of the text file that a computation's digits go to.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qmp {

// "directory/Pi - Dec - Chudnovsky (1988).txt", or " - Hex - " for radix 16; any other radix is fatal
// ("Invalid Base"). A '/' is added to the directory unless it ends in '/' or '\'; an empty directory is
// the current one.
std::string digit_file_name(const std::string& directory, std::string_view constant, std::uint32_t radix,
                            std::string_view algorithm);

}  // namespace qmp
