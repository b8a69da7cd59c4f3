// What the files are called that a computation's digits go to.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qmp {

// "Pi - Dec - Chudnovsky (1988)", or " - Hex - " for radix 16: the name of the digits, of which those of
// their files are made. Any other radix is fatal ("Invalid Base").
std::string digits_name(std::string_view constant, std::uint32_t radix, std::string_view algorithm);

// The text file: "directory/Pi - Dec - Chudnovsky (1988).txt". A '/' is added to the directory
// unless it ends in '/' or '\'; an empty directory is the current one.
std::string digit_file_name(const std::string& directory, std::string_view constant, std::uint32_t radix,
                            std::string_view algorithm);

}  // namespace qmp
