// The terms of the series for ArcCoth(x), for their leaves: P(k) = 1, Q(k) = x^2 (2k + 1), R(k) = 2k + 1.
#pragma once

#include <cstdint>

#include "multiply/word.h"
#include "series/leaf_ranges.h"
#include "series/leaf_residue.h"

namespace kelvara {

// The terms with Q(k) < 2^FactorBits. Their widths follow from this bound: x is known at run time only.
template <int FactorBits>
struct ArcCothTerms {
    static constexpr bool alternating = false;
    static constexpr int longest_range = 15;

    static constexpr double p_bits(int) { return 0.01; }
    static constexpr double q_bits(int) { return FactorBits; }
    static constexpr double r_bits(int bits) { return bits + 1; }
    // The summands of P fall by R(k) / Q(k + 1) < 1/4.
    static constexpr double sum_bits = 0.416;

    qmp::Word square;  // x^2

    template <int Bits>
    [[gnu::always_inline]] qmp::leaf::Residues term(qmp::Word* P, qmp::Word* Q, qmp::Word* R,
                                                    std::uint64_t k) const {
        using W = qmp::leaf::Widths<ArcCothTerms, Bits, 1>;
        static_assert(W::P == 1 && W::R == 1 && Bits < 61);
        const qmp::Word odd = 2 * k + 1;
        const qmp::leaf::Factor<FactorBits> q(square, odd);
        P[0] = 1;
        R[0] = odd;
        for (int i = 0; i < q.words; i++) Q[i] = q.w[i];
        return {1, qmp::leaf::residue_product(qmp::leaf::residue(square), odd), odd};
    }
};

}  // namespace kelvara
