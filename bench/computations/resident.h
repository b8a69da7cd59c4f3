// The most memory that the process had in use.
#pragma once

#include <cstdint>

namespace bench {

// Forgets what was: the peak begins at what is in use now.
void restart_resident_peak();
// Bytes of physical memory at the peak; 0 when the system does not tell.
std::uint64_t resident_peak();

}  // namespace bench
