// Fields of 48 bits to the residue modulo a prime: an exact dot product with the powers of 2^48.
//
// Every product field * power (below 2^97) is cut at a multiple of 2^48: fused into a sum with 1.5 * 2^100,
// whose last bit is worth 2^48, it leaves its upper part there; the rest, at most 2^47, is then exact. The
// ranges are proved in NUMERICS_CONVERSION.md.
#pragma once

#include <cstdint>

#include "multiply/vectors/inline.h"
#include "multiply/vst/kernels/kernels.h"

namespace {

template <typename V, std::uint32_t Chunks>
void reduce(double* residues, const double* chunks, std::uint64_t rows,
            const qmp::vst::ReduceConstants& constants) {
    using Real = typename V::Real;
    const Real prime = V::set(constants.prime);
    const Real inverse = V::set(constants.inverse);
    const Real magic = V::set(0x1.8p100);
    Real power[Chunks];
    KERNEL_UNROLL(4)
    for (std::uint32_t c = 0; c < Chunks; ++c) power[c] = V::set(constants.powers[c]);

    const std::uint64_t count = rows * qmp::vst::tile_columns;
    for (std::uint64_t i = 0; i < count; i += V::lanes) {
        Real sum = magic;
        Real low = V::load(chunks + i);
        KERNEL_UNROLL(4)
        for (std::uint32_t c = 1; c < Chunks; ++c) {
            const Real field = V::load(chunks + c * count + i);
            const Real next = V::mul_add(field, power[c], sum);
            low = V::add(low, V::mul_sub(field, power[c], V::sub(next, sum)));
            sum = next;
        }
        const Real high = V::sub(sum, magic);
        const Real quotient = V::rounded_product(V::add(high, low), inverse);
        V::store(residues + i, V::add(V::neg_mul_add(quotient, prime, high), low));
    }
}

}  // namespace
