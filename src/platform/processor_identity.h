// The processor's name and base frequency, as its identification instruction tells them.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/cpuid.h"

namespace qmp {

// Leaves that a processor lacks stay zero.
struct IdentityLeaves {
    CpuidLeaf leaf_16;              // eax: the base frequency in MHz
    std::array<CpuidLeaf, 3> name;  // leaves 0x80000002 to 0x80000004
};

IdentityLeaves read_identity_leaves();

// Without blanks around it and without runs of blanks in it; empty when the processor does not tell.
std::string processor_name_of(const IdentityLeaves& leaves);

// In Hz: of its own leaf, or of the end of a name like "... @ 2.80GHz". 0 when neither tells.
std::uint64_t base_frequency_of(const IdentityLeaves& leaves);
std::uint64_t base_frequency_in_name(std::string_view name);

}  // namespace qmp
