// The terms of the series for ArcSinlemn(p/q), for their leaves:
//   R(k) = p^4 (4k - 3) (2k - 1),   P(k) = R(k),   Q(k) = q^4 (4k + 1) 2k.
#pragma once

#include <cmath>
#include <cstdint>

#include "multiply/word.h"
#include "series/leaf_ranges.h"
#include "series/leaf_residue.h"
#include "series/leaf_words.h"

namespace kelvara {

// For p^4 <= 2^PBits and q^4 <= 2^QBits.
template <int PBits, int QBits>
struct ArcSinlemnTerms {
    static constexpr bool alternating = false;
    static constexpr int longest_range = 15;

    // R(k) < 8 p^4 k^2, Q(k) < 8 q^4 (k + 1)^2.
    static constexpr double r_bits(int bits) { return PBits + 3 + 2 * bits; }
    static constexpr double q_bits(int bits) { return QBits + 3 + 2 * bits; }
    static constexpr double p_bits(int bits) { return r_bits(bits); }
    // The summands fall by (p/q)^4 at least, which is below 1/4.
    static constexpr double sum_bits = 0.416;

    qmp::Word p4;
    qmp::Word q4;

    template <int Bits>
    [[gnu::always_inline]] qmp::leaf::Residues term(qmp::Word* P, qmp::Word* Q, qmp::Word* R,
                                                    std::uint64_t k) const {
        using qmp::Word;
        using namespace qmp::leaf;
        using W = Widths<ArcSinlemnTerms, Bits, 1>;
        static_assert(PBits + Bits <= 61 && QBits + Bits + 2 <= 61 && Bits <= 31);

        const Factor<PBits + Bits + 1> upper(p4, 2 * k - 1);
        const Factor<Bits + 2> lower(1, 4 * k - 3);
        const Factor<QBits + Bits + 1> even(q4, 2 * k);
        const Factor<Bits + 2> odd(1, 4 * k + 1);
        product<W::R, 1, 1>(R, upper.w, lower.w);
        std::copy_n(R, W::R, P);
        product<W::Q, 1, 1>(Q, even.w, odd.w);

        Residues checks;
        checks.R = residue_product(residue_product(4 * k - 3, 2 * k - 1), p4);
        checks.P = checks.R;
        checks.Q = residue_product(residue_product(4 * k + 1, 2 * k), q4);
        return checks;
    }
};

}  // namespace kelvara
