#include "multiply/vst/levels.h"

#include "multiply/instruction_levels.h"

namespace qmp::vst {
namespace {

// In the order of InstructionLevel.
constexpr const TransformKernels* transforms[instruction_level_count] = {
    &transform_avx512, &transform_avx2, &transform_fma4, &transform_sse2, &transform_scalar};
constexpr const ConversionKernels* conversions[instruction_level_count] = {
    &conversion_avx512, &conversion_avx2, &conversion_fma4, &conversion_sse2, &conversion_scalar};

}  // namespace

const TransformKernels& transform_kernels() {
    return *transforms[static_cast<std::size_t>(current_level())];
}

const ConversionKernels& conversion_kernels() {
    return *conversions[static_cast<std::size_t>(current_level())];
}

}  // namespace qmp::vst
