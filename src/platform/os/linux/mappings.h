// What the kernel tells of this process's mappings.
#pragma once

#include <cstdint>
#include <istream>

namespace qmp::os {

// Bytes of [begin, begin + bytes) that stand on transparent huge pages, from a text in the form of
// /proc/PID/smaps. Mappings count whole or not at all: one that only overlaps the range is left out.
std::uint64_t huge_page_bytes(std::istream& smaps, std::uint64_t begin, std::uint64_t bytes);

// The size of the reserved huge pages, from a text in the form of /proc/meminfo; 0 when it has none.
std::uint64_t huge_page_size(std::istream& meminfo);

}  // namespace qmp::os
