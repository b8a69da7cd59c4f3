// The processor's identification instruction.
#pragma once

#include <cstdint>

namespace qmp {

// The four registers that CPUID returns for one leaf.
struct CpuidLeaf {
    std::uint32_t eax = 0, ebx = 0, ecx = 0, edx = 0;
};

// The extended leaves begin here; this one's eax is the highest of them.
constexpr std::uint32_t extended_cpuid_base = 0x80000000;

// Sub-leaf 0. A leaf that the processor lacks returns anything: callers compare with the highest first.
CpuidLeaf read_cpuid_leaf(std::uint32_t leaf);

}  // namespace qmp
