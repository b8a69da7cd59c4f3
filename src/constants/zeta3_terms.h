// The terms of the two series for Zeta(3), for their leaves. Bounds of an expression in k < 2^bits are those
// of a power of k + 1 <= 2^bits with the same leading coefficient.
#pragma once

#include <cstdint>

#include "multiply/word.h"
#include "series/leaf_ranges.h"
#include "series/leaf_residue.h"
#include "series/leaf_words.h"

namespace kelvara {

// R(k) = k^5 (2k - 1)^3,   Q(k) = 24 (3k + 1) (3k + 2) (4k + 1)^3 (4k + 3)^3,
// P(k) = R(k) (126392 k^5 + 412708 k^4 + 531578 k^3 + 336367 k^2 + 104000 k + 12463).
struct ZetaLongTerms {
    static constexpr bool alternating = true;
    static constexpr int longest_range = 5;

    static constexpr double linear_bits = 16.9476;  // of 126392
    static constexpr double r_bits(int bits) { return 3 + 8 * bits; }
    static constexpr double q_bits(int bits) { return 19.7549 + 8 * bits; }  // 24 * 9 * 4096
    static constexpr double p_bits(int bits) { return r_bits(bits) + linear_bits + 5 * bits; }
    // The summands alternate and fall.
    static constexpr double sum_bits = 0;

    template <int Bits>
    [[gnu::always_inline]] qmp::leaf::Residues term(qmp::Word* P, qmp::Word* Q, qmp::Word* R,
                                                    std::uint64_t k) const {
        using qmp::Word;
        using namespace qmp::leaf;
        using W = Widths<ZetaLongTerms, Bits, 1>;
        static_assert(Bits <= 31, "factors of one word, or of two where they are so declared");

        // R = k^2 (k (2k - 1))^3
        const Word middle = 2 * k - 1;
        const Factor<2 * Bits> kk(k, k);
        const Factor<2 * Bits + 1> mk(k, middle);
        constexpr int low_words = words_for(4 * Bits + 1);
        constexpr int high_words = words_for(4 * Bits + 2);
        Word low[low_words], high[high_words];
        product<low_words, 1, 1>(low, kk.w, mk.w);
        product<high_words, 1, 1>(high, mk.w, mk.w);
        product<W::R, low_words, high_words>(R, low, high);

        // 17 bits are a little more than 126392, for the lower coefficients.
        static_assert(Bits >= 8);
        constexpr int words3 = words_for(17 + 3 * Bits);
        constexpr int words4 = words_for(17 + 4 * Bits);
        constexpr int words5 = words_for(17 + 5 * Bits);
        const Word h1 = 126392 * k + 412708;
        const Factor<17 + 2 * Bits> h2(h1, k, 531578);
        Word h[words5];
        multiply_add<words3, h2.words>(h, h2.w, k, 336367);
        multiply_add<words4, words3>(h, h, k, 104000);
        multiply_add<words5, words4>(h, h, k, 12463);
        product<W::P, W::R, words5>(P, R, h);

        // Q = 24 (3k + 1) (3k + 2) v^3, v = (4k + 1) (4k + 3)
        const Word three = 3 * k + 1;
        const Factor<2 * Bits + 8> outer(24 * three, three + 1);
        const Factor<2 * Bits + 4> v(4 * k + 1, 4 * k + 3);
        constexpr int square_words = words_for(4 * Bits + 8);
        constexpr int front_words = words_for(4 * Bits + 12);
        Word square[square_words], front[front_words];
        product<square_words, v.words, v.words>(square, v.w, v.w);
        product<front_words, outer.words, v.words>(front, outer.w, v.w);
        product<W::Q, front_words, square_words>(Q, front, square);

        // The factors in another order than in the words.
        const std::uint64_t k2 = residue_product(k, k);
        const std::uint64_t m2 = residue_product(middle, middle);
        std::uint64_t polynomial = residue_sum(h1, k, 531578, 1);
        polynomial = residue_sum(polynomial, k2, residue_sum(336367, k, 104000, 1), 1);
        polynomial = residue_sum(polynomial, k, 12463, 1);
        const std::uint64_t a = residue_product(4 * k + 1, 24 * three);
        const std::uint64_t b = residue_product(4 * k + 3, three + 1);
        const std::uint64_t c = residue_product(4 * k + 1, 4 * k + 3);
        Residues checks;
        checks.R = residue_product(residue_product(residue_product(k2, k2), k), residue_product(m2, middle));
        checks.P = residue_product(checks.R, polynomial);
        checks.Q = residue_product(residue_product(a, b), residue_product(c, c));
        return checks;
    }
};

// R(k) = k^5,   P(k) = R(k) (205 k^2 + 250 k + 77),   Q(k) = (4k + 2)^5.
struct ZetaShortTerms {
    static constexpr bool alternating = true;
    static constexpr int longest_range = 11;

    static constexpr double square_bits = 7.6795;  // of 205
    static constexpr double r_bits(int bits) { return 5 * bits; }
    static constexpr double q_bits(int bits) { return 10 + 5 * bits; }
    static constexpr double p_bits(int bits) { return r_bits(bits) + square_bits + 2 * bits; }
    static constexpr double sum_bits = 0;

    template <int Bits>
    [[gnu::always_inline]] qmp::leaf::Residues term(qmp::Word* P, qmp::Word* Q, qmp::Word* R,
                                                    std::uint64_t k) const {
        using qmp::Word;
        using namespace qmp::leaf;
        using W = Widths<ZetaShortTerms, Bits, 1>;
        static_assert(Bits <= 28,
                      "squares and the polynomial of one word, or of two where they are so declared");

        const auto fifth_power = []<int Width, int B>(Word * x, Word n) __attribute__((always_inline)) {
            const Factor<2 * B> square(n, n);
            constexpr int words = words_for(3 * B);
            Word cube[words];
            product<words, square.words, 1>(cube, square.w, &n);
            product<Width, words, square.words>(x, cube, square.w);
        };
        const Word even = 4 * k + 2;
        const Factor<whole_bits(square_bits + 2 * Bits)> polynomial(205 * k + 250, k, 77);
        fifth_power.template operator()<W::R, Bits>(R, k);
        fifth_power.template operator()<W::Q, Bits + 2>(Q, even);
        product<W::P, W::R, polynomial.words>(P, R, polynomial.w);

        const auto fifth_residue = [](Word n) __attribute__((always_inline)) {
            const std::uint64_t square = residue_product(n, n);
            return residue_product(residue_product(square, square), n);
        };
        Residues checks;
        checks.R = fifth_residue(k);
        checks.P = residue_product(checks.R, residue_sum(205 * k, k, residue_sum(250, k, 77, 1), 1));
        checks.Q = fifth_residue(even);
        return checks;
    }
};

}  // namespace kelvara
