#include "multiply/ntt64/levels.h"

#include "multiply/instruction_levels.h"

namespace qmp::ntt64 {

const Kernels& current_kernels() {
    switch (current_level()) {
        case InstructionLevel::avx512:
            return kernels_avx512;
        case InstructionLevel::avx2:
            return kernels_avx2;
        default:
            return kernels_scalar;
    }
}

}  // namespace qmp::ntt64
