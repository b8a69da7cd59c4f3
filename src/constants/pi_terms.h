// The terms of the series for pi, for their leaves:
//   R(k) = (x k - (x - 1)) (2k - 1) (x k - 1),   P(k) = R(k) (A k + B),   Q(k) = C k^3.
#pragma once

#include <cstdint>

#include "multiply/word.h"
#include "series/leaf_ranges.h"
#include "series/leaf_residue.h"
#include "series/leaf_words.h"
#include "series/term_factors.h"

namespace kelvara {

struct ChudnovskyNumbers {
    static constexpr bool alternating = true;
    static constexpr int leaf_size = 8;
    static constexpr qmp::Word x = 6;
    static constexpr qmp::Word A = 545140134;
    static constexpr qmp::Word B = 13591409;
    static constexpr qmp::Word C = 10939058860032000;
    // Upper bounds of the logarithms to base two of 2 x^2, A + B and C.
    static constexpr double r_bits = 6.17;
    static constexpr double linear_bits = 29.06;
    static constexpr double q_bits = 53.281;
};

struct RamanujanNumbers {
    static constexpr bool alternating = false;
    static constexpr int leaf_size = 12;
    static constexpr qmp::Word x = 4;
    static constexpr qmp::Word A = 26390;
    static constexpr qmp::Word B = 1103;
    static constexpr qmp::Word C = 3073907232;
    static constexpr double r_bits = 5;
    static constexpr double linear_bits = 14.75;
    static constexpr double q_bits = 31.518;
};

// The terms of index k < 2^39 in the widths that their values ask for.
template <typename Numbers>
struct PiTerms {
    static constexpr bool alternating = Numbers::alternating;
    static constexpr int longest_range = Numbers::leaf_size - 1;

    // R(k) < 2 x^2 k^3 and A k + B <= (A + B) k.
    static constexpr double r_bits(int bits) { return Numbers::r_bits + 3 * bits; }
    static constexpr double q_bits(int bits) { return Numbers::q_bits + 3 * bits; }
    static constexpr double p_bits(int bits) { return r_bits(bits) + Numbers::linear_bits + bits; }
    // The summand of the i-th term of a range is less than (2 x^2 / C)^(i - 1) times the bound of the first
    // one, and that ratio is below 2^-26.
    static constexpr double sum_bits = 0.0001;

    template <int Bits>
    [[gnu::always_inline]] qmp::leaf::Residues term(qmp::Word* P, qmp::Word* Q, qmp::Word* R,
                                                    std::uint64_t k) const {
        using qmp::leaf::Factor;
        using qmp::leaf::product;
        using qmp::leaf::residue_product;
        using W = qmp::leaf::Widths<PiTerms, Bits, 1>;
        static_assert(Bits <= 39, "the factors of R are residues as they are");

        const qmp::Word low = Numbers::x * k - (Numbers::x - 1);
        const qmp::Word middle = 2 * k - 1;
        const qmp::Word high = Numbers::x * k - 1;
        const Factor<qmp::leaf::whole_bits(Numbers::r_bits - 1 + 2 * Bits)> outer(low, high);
        const Factor<qmp::leaf::whole_bits(Numbers::linear_bits + Bits)> linear(Numbers::A, k, Numbers::B);
        const Factor<qmp::leaf::whole_bits(Numbers::q_bits + Bits)> ck(Numbers::C, k);
        const Factor<2 * Bits> kk(k, k);
        product<W::R, outer.words, 1>(R, outer.w, &middle);
        product<W::P, W::R, linear.words>(P, R, linear.w);
        product<W::Q, ck.words, kk.words>(Q, ck.w, kk.w);

        // The factors in another order than in the words, so that only factors of k alone are shared.
        const Factor<qmp::leaf::whole_bits(Numbers::r_bits + 2 * Bits)> lower(low, middle);
        qmp::leaf::Residues checks;
        checks.R = residue_product(lower.residue(), high);
        checks.P = residue_product(checks.R, linear.residue());
        checks.Q = residue_product(residue_product(kk.residue(), k), Numbers::C);
        return checks;
    }
};

template <typename Numbers>
qmp::TermFactors pi_term_factors() {
    constexpr auto x = static_cast<std::int64_t>(Numbers::x);
    return {.R = {{Numbers::x, 1 - x}, {2, -1}, {Numbers::x, -1}},
            .Q = {{0, static_cast<std::int64_t>(Numbers::C)}, {1, 0, 3}}};
}

}  // namespace kelvara
