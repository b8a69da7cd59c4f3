#include "constants/bbp/settings.h"

#include <algorithm>

#include "platform/os/threads.h"

namespace kelvara::bbp {

Settings default_settings() {
    Settings settings;
    settings.threads = std::clamp<std::uint64_t>(qmp::os::active_processors(), 1, largest_threads);
    return settings;
}

}  // namespace kelvara::bbp
