// Binding a thread to a processor group.
#pragma once

#include <cstdint>

namespace qmp {

// Binds the calling thread to group n modulo the number of groups. A failure is only a warning, printed
// once per process however many threads meet it.
void set_thread_group(std::uint64_t n);

}  // namespace qmp
