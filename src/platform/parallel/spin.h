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

// Spins for some tens of microseconds at the most; true when condition() came to hold. Going to sleep and
// being woken takes as long, a woken thread may start on the processor of the one that woke it, and the
// sweeps of a transform follow each other faster than that. Longer waits would take processors from threads
// that work.
template <typename Condition>
bool spin_for_a_moment(Condition condition) {
    constexpr std::uint32_t patience = 2048;
    for (std::uint32_t spins = 0; spins < patience; ++spins) {
        if (condition()) return true;
        __builtin_ia32_pause();
    }
    return false;
}

}  // namespace qmp
