// Waiting for a moment without going to sleep.
#pragma once

#include <cstdint>
#include <thread>

namespace qmp {

// Spins until condition() holds. The other side is a few instructions away, unless the system took its
// processor away: then the processor is offered to it.
template <typename Condition>
void spin_until(Condition condition) {
    constexpr std::uint32_t patience = 256;
    for (std::uint32_t spins = 0; !condition(); ++spins) {
        if (spins < patience) {
            __builtin_ia32_pause();
        } else {
            std::this_thread::yield();
        }
    }
}

}  // namespace qmp
