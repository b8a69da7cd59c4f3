#include "constants/bbp/core_binder.h"

namespace kelvara::bbp {

void CoreBinder::bind(std::uint64_t thread) {
    if (cores_.size() == 0) return;
    const std::uint64_t core = thread % cores_.size();
    if (!qmp::bind_to_core(core, cores_, system_)) refused_.store(core, std::memory_order_relaxed);
}

std::optional<std::uint64_t> CoreBinder::refused_core() const {
    const std::uint64_t core = refused_.load(std::memory_order_relaxed);
    return core == none ? std::nullopt : std::optional(core);
}

}  // namespace kelvara::bbp
