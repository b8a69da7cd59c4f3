// The numbers 0, 1, 2, ... of the one processor group, for the system's own processor numbers, which can
// have gaps.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "platform/os/processor_mask.h"

namespace qmp::os {

class ProcessorNumbering {
  public:
    // The system's numbers of the processors of the group, ascending; at least one.
    explicit ProcessorNumbering(std::vector<std::uint32_t> processors) : processors_(std::move(processors)) {}

    std::uint32_t size() const { return static_cast<std::uint32_t>(processors_.size()); }
    // Processors that are not of the group are left out.
    ProcessorMask mask_of(std::span<const std::uint32_t> processors) const;
    // The system's numbers; nothing when the mask names a processor that the group has not.
    std::optional<std::vector<std::uint32_t>> processors_of(const ProcessorMask& mask) const;

  private:
    std::vector<std::uint32_t> processors_;
};

// The processors that the process was given at its start.
const ProcessorNumbering& process_numbering();

}  // namespace qmp::os
