#include "platform/parallel/spare_processor.h"

#include "platform/os/threads.h"

namespace qmp {

std::atomic<std::int64_t> SpareProcessor::at_work_{1};

std::int64_t SpareProcessor::processors() {
    static const auto count = static_cast<std::int64_t>(os::active_processors());
    return count;
}

}  // namespace qmp
