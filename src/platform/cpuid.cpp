#include "platform/cpuid.h"

#include <cpuid.h>

namespace qmp {

CpuidLeaf read_cpuid_leaf(std::uint32_t leaf) {
    CpuidLeaf registers;
    __cpuid_count(leaf, 0, registers.eax, registers.ebx, registers.ecx, registers.edx);
    return registers;
}

}  // namespace qmp
