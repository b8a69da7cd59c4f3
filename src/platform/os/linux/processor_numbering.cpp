#include "platform/os/linux/processor_numbering.h"

#include <algorithm>

namespace qmp::os {

ProcessorMask ProcessorNumbering::mask_of(std::span<const std::uint32_t> processors) const {
    ProcessorMask mask;
    for (const std::uint32_t processor : processors) {
        const auto at = std::lower_bound(processors_.begin(), processors_.end(), processor);
        if (at != processors_.end() && *at == processor) {
            mask.insert(static_cast<std::uint32_t>(at - processors_.begin()));
        }
    }
    return mask;
}

std::optional<std::vector<std::uint32_t>> ProcessorNumbering::processors_of(const ProcessorMask& mask) const {
    std::vector<std::uint32_t> list;
    for (const std::uint32_t number : mask.processors()) {
        if (number >= size()) return std::nullopt;
        list.push_back(processors_[number]);
    }
    return list;
}

}  // namespace qmp::os
