#include "constants/bbp/levels.h"

#include "multiply/instruction_levels.h"

namespace kelvara::bbp {
namespace {

// In the order of InstructionLevel.
constexpr const Kernels* tables[qmp::instruction_level_count] = {
    &kernels_avx512, &kernels_avx2, &kernels_fma4, &kernels_sse2, &kernels_scalar};

}  // namespace

const Kernels& current_kernels() {
    return *tables[static_cast<std::size_t>(qmp::current_level())];
}

std::vector<std::string> kernel_names() {
    std::vector<std::string> names;
    for (const Kernels* kernels : tables) names.emplace_back(kernels->name);
    return names;
}

}  // namespace kelvara::bbp
