// The error codes that the seam hands out: those of Windows, on every system.
//
// One set of numbers keeps the program's texts and files the same everywhere. A code of another system
// that has no counterpart carries that system's own number with `foreign_error` added (bit 29, which
// Windows reserves for codes that are not its own).
#pragma once

#include <cstdint>

namespace qmp::os {

using ErrorCode = std::uint32_t;

constexpr ErrorCode no_error = 0;
constexpr ErrorCode file_not_found = 2;
constexpr ErrorCode path_not_found = 3;
constexpr ErrorCode too_many_open_files = 4;
constexpr ErrorCode access_denied = 5;
constexpr ErrorCode invalid_handle = 6;
constexpr ErrorCode not_enough_memory = 8;
constexpr ErrorCode invalid_data = 13;
constexpr ErrorCode not_same_device = 17;
constexpr ErrorCode write_fault = 29;
constexpr ErrorCode read_fault = 30;
constexpr ErrorCode sharing_violation = 32;
constexpr ErrorCode file_exists = 80;
constexpr ErrorCode invalid_parameter = 87;
constexpr ErrorCode disk_full = 112;
constexpr ErrorCode call_not_implemented = 120;
constexpr ErrorCode directory_not_empty = 145;
constexpr ErrorCode already_exists = 183;
constexpr ErrorCode name_too_long = 206;
constexpr ErrorCode file_too_large = 223;
constexpr ErrorCode io_device_failure = 1117;
constexpr ErrorCode device_not_connected = 1167;
constexpr ErrorCode foreign_error = 0x20000000;

}  // namespace qmp::os
