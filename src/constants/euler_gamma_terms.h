// The terms of the refined Brent-McMillan method's correction, for their leaves:
//   P(k) = R(k) = (2k - 1)^3, Q(k) = 2^shift k.
#pragma once

#include <algorithm>
#include <cstdint>

#include "multiply/word.h"
#include "series/leaf_ranges.h"
#include "series/leaf_residue.h"

namespace kelvara {

struct EulerGammaSeriesCTerms {
    static constexpr bool alternating = false;
    static constexpr int longest_range = 15;
    static constexpr int longest_shift = 63;

    static constexpr double p_bits(int bits) { return 3 * (bits + 1); }
    static constexpr double q_bits(int bits) { return bits + longest_shift; }
    static constexpr double r_bits(int bits) { return 3 * (bits + 1); }
    // None of the summands is greater than the first one: log2(15).
    static constexpr double sum_bits = 3.91;

    int shift;

    template <int Bits>
    [[gnu::always_inline]] qmp::leaf::Residues term(qmp::Word* P, qmp::Word* Q, qmp::Word* R,
                                                    std::uint64_t k) const {
        using qmp::leaf::Factor;
        using qmp::leaf::residue_product;
        using W = qmp::leaf::Widths<EulerGammaSeriesCTerms, Bits, 1>;
        static_assert(Bits < 61 && W::Q == 2);

        const qmp::Word odd = 2 * k - 1;
        const Factor<2 * (Bits + 1)> square(odd, odd);
        qmp::leaf::product<W::R, square.words, 1>(R, square.w, &odd);
        std::copy_n(R, W::R, P);
        const qmp::DoubleWord q = static_cast<qmp::DoubleWord>(k) << shift;
        Q[0] = qmp::low_word(q);
        Q[1] = qmp::high_word(q);

        const std::uint64_t r = residue_product(residue_product(odd, odd), odd);
        return {r, residue_product(k, std::uint64_t{1} << shift % 61), r};
    }
};

}  // namespace kelvara
