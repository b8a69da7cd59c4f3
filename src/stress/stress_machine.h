// What the stress tester asks of the machine that it runs on.
#pragma once

#include <cstdint>
#include <functional>

#include "platform/clock_system.h"
#include "platform/parallel/child_thread.h"

namespace kelvara {

// The members are this machine's; tests put others in their place. Called from many threads.
struct StressMachine {
    StressMachine();

    qmp::ClockSystem* clocks;
    std::uint64_t cores;
    // Binds the calling thread to a core below `cores`; false when the system refuses.
    std::function<bool(std::uint64_t core)> bind_to_core;
    qmp::StartThread start_thread;
};

}  // namespace kelvara
