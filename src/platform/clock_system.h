// The calls to the system that the timers are made of.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/os/clock.h"
#include "platform/os/threads.h"

namespace qmp {

// Each operation is that of os/clock.h or os/threads.h of the same name. A class of its own so that clocks of
// any rate, and clocks that fail, can stand in for the real ones.
class ClockSystem {
  public:
    virtual ~ClockSystem() = default;

    virtual std::optional<std::int64_t> performance_counter() { return os::performance_counter(); }
    virtual std::optional<std::int64_t> performance_frequency() { return os::performance_frequency(); }
    virtual std::optional<std::string_view> performance_counter_source() {
        return os::performance_counter_source();
    }
    virtual std::optional<os::ProcessTimes> process_times() { return os::process_times(); }
    virtual std::uint64_t time_stamp_counter() { return os::time_stamp_counter(); }
    virtual bool pin_thread_to_lowest_processor() { return os::pin_thread_to_lowest_processor(); }
    virtual bool unpin_thread() { return os::unpin_thread(); }
};

// This machine's. Usable from any thread.
ClockSystem& clock_system();

}  // namespace qmp
