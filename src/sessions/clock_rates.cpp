#include "sessions/clock_rates.h"

#include "platform/reference_clocks.h"
#include "platform/timers.h"

namespace kelvara {

ClockRates measure_clock_rates() {
    return {std::string(qmp::reference_clock_name()), static_cast<std::uint64_t>(qmp::counter_frequency()),
            qmp::tsc_rate(), qmp::cpuid_loop_rate()};
}

}  // namespace kelvara
