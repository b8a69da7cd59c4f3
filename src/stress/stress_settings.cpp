#include "stress/stress_settings.h"

#include <algorithm>

#include "platform/os/memory.h"
#include "platform/os/threads.h"
#include "stress/catalogue.h"

namespace kelvara {

StressSettings::StressSettings()
    : threads(std::max<std::uint64_t>(qmp::os::active_processors(), 1)),
      allocator(qmp::make_default_allocator()),
      memory(qmp::os::available_physical_memory() / 16 * 15),
      enabled(stress_tests().size(), true) {}

bool StressSettings::any_enabled() const {
    return std::find(enabled.begin(), enabled.end(), true) != enabled.end();
}

void StressSettings::enable_all(bool on) {
    std::fill(enabled.begin(), enabled.end(), on);
}

}  // namespace kelvara
