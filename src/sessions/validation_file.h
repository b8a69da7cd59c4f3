// The validation file: what was computed, on which machine, how long it took and with which result, sealed
// so that a changed file is recognised.
//
// UTF-8 with a byte-order mark, lines end with CR LF. The content ends with the marker "----"; the seal's two
// lines follow.
#pragma once

#include <string>
#include <string_view>

#include "sessions/validation_record.h"
#include "sessions/validation_seal.h"

namespace kelvara {

inline constexpr std::string_view byte_order_mark = "\xef\xbb\xbf";
inline constexpr std::string_view validation_marker = "----";
inline constexpr std::string_view validation_version_label = "Validation Version:";
inline constexpr std::string_view computation_time_label = "Total Computation Time:";
inline constexpr std::string_view wall_time_label = "Start-to-End Wall Time:";
inline constexpr std::string_view checksum0_label = "Checksum0: ";
inline constexpr std::string_view checksum1_label = "Checksum1: ";

// From the byte-order mark through the marker.
std::string validation_content(const ValidationRecord& record);
// The lines below the marker.
std::string validation_trailer(const ValidationSeal& seal);

// Writes "Pi - 20261112-211102.txt" into the current directory and prints its name. A file that cannot be
// written is reported, and nothing else happens.
void write_validation_file(const ValidationRecord& record, const ValidationSealer& sealer);

// What follows "Username:" in the file "Username.txt" of the program's folder, or of the one above it. In its
// place: "Username.txt not found.", or "Tag not found in" and the name. Only one line is taken, and no
// control characters: a name must not look like other lines of the file.
std::string validation_user_name(const std::string& program_directory);

}  // namespace kelvara
