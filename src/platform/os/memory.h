// The machine's physical memory, in bytes.
#pragma once

#include <cstdint>

namespace qmp::os {

// 0 when the system does not tell.
std::uint64_t total_physical_memory();
// What a program could take without pushing others out; 0 when the system does not tell.
std::uint64_t available_physical_memory();

// What this process could fill in all, paging included, before the system would kill somebody. A system
// that promises more than it has finds out only when the pages are written, so a large request is compared
// with this first. 0 when the system does not tell, or refuses by itself what it cannot hold.
std::uint64_t committable_memory();
inline bool can_be_committed(std::uint64_t bytes) {
    const std::uint64_t most = committable_memory();
    return most == 0 || bytes <= most;
}

// Asks for pages as large as the system gives by itself, for memory that nothing has been written to yet:
// large transforms touch many pages at once. A hint, without effect where the system has no such thing.
void prefer_large_pages(void* memory, std::uint64_t bytes);

}  // namespace qmp::os
