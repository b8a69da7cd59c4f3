// The kernels of one instruction set, from its vector type and the number of vectors to work on at a time.
#pragma once

#include "constants/bbp/kernels/kernels.h"
#include "constants/bbp/kernels/residues.h"

namespace {

using kelvara::bbp::Kernels;
using kelvara::bbp::TermRun;

template <typename V, int Group>
struct TermKernels {
    using Real = typename V::Real;
    using Bits = typename V::Bits;
    static constexpr int lanes = V::lanes;
    static constexpr std::uint64_t batch = static_cast<std::uint64_t>(lanes * Group);
    static_assert(lanes <= static_cast<int>(kelvara::bbp::most_lanes));
    // The exponents of small terms, 20 apart and 47 below 0 to begin with, stay those of normal numbers.
    static_assert(47 + 20 * (batch - 1) <= 1022);

    static void add_powers(const TermRun& run, std::uint64_t chunks, std::uint64_t* sums) {
        for_every_batch(run, [&](Residues<V, Group>& terms, Bits(&exponents)[Group], std::uint64_t rest)
                                 KERNEL_INLINE_LAMBDA {
                                     terms.raise(exponents, run.squarings);
                                     add_digits(terms, rest, 0, chunks, sums);
                                 });
    }
    static void add_small_terms(const TermRun& run, std::uint64_t chunks, std::uint64_t* sums) {
        for_every_batch(run, [&](Residues<V, Group>& terms, Bits(&exponents)[Group], std::uint64_t rest)
                                 KERNEL_INLINE_LAMBDA {
                                     for (int g = 0; g < Group; ++g) terms.value[g] = V::reals(exponents[g]);
                                     add_digits(terms, rest, run.first_chunk, chunks, sums);
                                 });
    }

  private:
    template <typename Body>
    static KERNEL_INLINE void for_every_batch(const TermRun& run, Body body) {
        double modulus_offsets[lanes];
        std::uint64_t exponent_offsets[lanes];
        for (int lane = 0; lane < lanes; ++lane) {
            modulus_offsets[lane] = lane * run.modulus_step;
            exponent_offsets[lane] = static_cast<std::uint64_t>(lane) * run.exponent_step;
        }
        const Real lane_moduli = V::load(modulus_offsets);
        const Bits lane_exponents = V::load(exponent_offsets);
        double modulus = run.modulus;
        std::uint64_t exponent = run.exponent;
        for (std::uint64_t i = 0; i < run.count; i += batch) {
            Residues<V, Group> terms;
            Bits exponents[Group];
            KERNEL_UNROLL(8)
            for (int g = 0; g < Group; ++g) {
                terms.modulus[g] = V::add(V::set(modulus), lane_moduli);
                terms.inverse[g] = V::div(V::set(1), terms.modulus[g]);
                exponents[g] = V::add(V::set_bits(exponent), lane_exponents);
                modulus += lanes * run.modulus_step;
                exponent += lanes * run.exponent_step;
            }
            body(terms, exponents, run.count - i);
        }
    }

    // Terms from number `rest` on are none: they have computed something, and become 0.
    static void drop_from(Residues<V, Group>& terms, std::uint64_t rest) {
        for (int g = 0; g < Group; ++g) {
            std::uint64_t live[lanes];
            for (int lane = 0; lane < lanes; ++lane) {
                live[lane] = static_cast<std::uint64_t>(g * lanes + lane) < rest ? ~std::uint64_t{0} : 0;
            }
            terms.value[g] = V::reals(V::bit_and(V::bits(terms.value[g]), V::load(live)));
        }
    }

    static KERNEL_INLINE void add_digits(Residues<V, Group>& terms, std::uint64_t rest, std::uint64_t first,
                                         std::uint64_t chunks, std::uint64_t* sums) {
        if (rest < batch) drop_from(terms, rest);
        const Real unit = V::set(0x1p48);
        KERNEL_UNROLL(8)
        for (int g = 0; g < Group; ++g) terms.inverse[g] = V::mul(terms.inverse[g], unit);
        const Bits constants = V::set_bits(std::uint64_t{Group} * rounding_constant_bits);
        for (std::uint64_t chunk = first; chunk < chunks; ++chunk) {
            Bits sum = V::sub(V::load(sums + chunk * lanes), constants);
            KERNEL_UNROLL(8)
            for (int g = 0; g < Group; ++g) {
                const Real rounded = MultiplyAdd<V>::rounded_product(terms.value[g], terms.inverse[g]);
                sum = V::add(sum, V::bits(rounded));
                const Real digit = V::sub(rounded, V::set(rounding_constant));
                terms.value[g] = V::neg_mul_add(digit, terms.modulus[g], V::mul(terms.value[g], unit));
            }
            V::store(sums + chunk * lanes, sum);
        }
        // What is left over is at most 0.6 of a modulus, of either sign.
        Bits last = V::load(sums + (chunks - 1) * lanes);
        KERNEL_UNROLL(8)
        for (int g = 0; g < Group; ++g) {
            last = V::sub(last, V::template shift_right<63>(V::bits(terms.value[g])));
        }
        V::store(sums + (chunks - 1) * lanes, last);
    }
};

template <typename V, int Group>
constexpr Kernels kernel_set(const char* name) {
    using Set = TermKernels<V, Group>;
    return {name, V::lanes, Set::batch, Set::add_powers, Set::add_small_terms};
}

}  // namespace
