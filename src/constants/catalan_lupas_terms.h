// The terms of Lupas' series for Catalan's constant, for their leaves:
//   R(k) = 16 k^3 (4k - 2),   P(k) = R(k) (40 k^2 + 56 k + 19),   Q(k) = (4k + 1)^2 (4k + 3)^2.
#pragma once

#include <cstdint>

#include "multiply/word.h"
#include "series/leaf_ranges.h"
#include "series/leaf_residue.h"
#include "series/leaf_words.h"

namespace kelvara {

struct LupasTerms {
    static constexpr bool alternating = true;
    static constexpr int longest_range = 9;

    // R(k) < 64 k^4, and the others are less than their leading powers of k + 1.
    static constexpr double square_bits = 5.322;  // of 40
    static constexpr double r_bits(int bits) { return 6 + 4 * bits; }
    static constexpr double q_bits(int bits) { return 8 + 4 * bits; }
    static constexpr double p_bits(int bits) { return r_bits(bits) + square_bits + 2 * bits; }
    // The summands alternate and fall.
    static constexpr double sum_bits = 0;

    template <int Bits>
    [[gnu::always_inline]] qmp::leaf::Residues term(qmp::Word* P, qmp::Word* Q, qmp::Word* R,
                                                    std::uint64_t k) const {
        using qmp::Word;
        using namespace qmp::leaf;
        using W = Widths<LupasTerms, Bits, 1>;
        static_assert(Bits <= 31, "factors of one word, or of two where they are so declared");

        const Word middle = 4 * k - 2;
        const Factor<2 * Bits> kk(k, k);
        const Factor<2 * Bits + 6> outer(16 * k, middle);
        const Factor<2 * Bits + 4> v(4 * k + 1, 4 * k + 3);
        const Factor<whole_bits(square_bits + 2 * Bits)> polynomial(40 * k + 56, k, 19);
        product<W::R, outer.words, kk.words>(R, outer.w, kk.w);
        product<W::P, W::R, polynomial.words>(P, R, polynomial.w);
        product<W::Q, v.words, v.words>(Q, v.w, v.w);

        // The factors in another order than in the words.
        const std::uint64_t first = residue_product(4 * k + 1, 4 * k + 1);
        const std::uint64_t second = residue_product(4 * k + 3, 4 * k + 3);
        Residues checks;
        checks.R = residue_product(residue_product(middle, k), residue_product(16 * k, k));
        checks.P = residue_product(checks.R, residue_sum(40 * k, k, residue_sum(56, k, 19, 1), 1));
        checks.Q = residue_product(first, second);
        return checks;
    }
};

}  // namespace kelvara
