// The terms of Huvent's series for Catalan's constant as straight-line code, while the indices keep below a
// power of two: Q(k), the product of the squares of nine linear factors, and P(k), a polynomial of degree 16,
// without its power of two.
#pragma once

#include <cstdint>
#include <iterator>
#include <utility>

#include "multiply/word.h"
#include "series/leaf_ranges.h"
#include "series/leaf_residue.h"
#include "series/leaf_words.h"

namespace kelvara {

// From k^16 down to 1. The last four are subtracted.
inline constexpr qmp::Word huvent_coefficients[] = {
    4636372233093120,   37721048963088384,  140614334152704000, 318025249742389248, 486920573914447872,
    532937589964406784, 428868733241327616, 256653109156773888, 113872382317283328, 36670081182465024,
    8098743309464448,   1029713994232704,   5572409156528,      24153149527360,     4419704161120,
    360406957080,       11728430425,
};
inline constexpr int huvent_degree = 16;
inline constexpr int huvent_added_coefficients = 13;

// The term of index 1 <= k < 2^Bits.
template <int Bits>
struct HuventTerm {
    // The linear factors are less than their slopes times k + 1, whose product is 24^6. The first i
    // coefficients of P make less than 2^52.2 k^i where k is large, and less than 2^61.2 k^i anywhere.
    static_assert(22 <= Bits && Bits <= 31);
    static constexpr int root_words = qmp::leaf::words_for(27.51 + 9 * Bits);
    static constexpr int q_words = qmp::leaf::words_for(55.02 + 18 * Bits);
    static constexpr int partial_words(int i) { return qmp::leaf::words_for(52.2 + i * Bits); }
    static constexpr int p_words = partial_words(huvent_degree);

    [[gnu::noinline]] static void set_Q(qmp::Word* Q, std::uint64_t& check, std::uint64_t k) {
        using namespace qmp::leaf;
        const Factor<2 * Bits + 3> f1(2 * k + 1, 4 * k + 1);
        const Factor<2 * Bits + 5> f2(4 * k + 3, 6 * k + 1);
        const Factor<2 * Bits + 7> f3(6 * k + 5, 12 * k + 1);
        const Factor<2 * Bits + 8> f4(12 * k + 5, 12 * k + 7);
        const qmp::Word last = 12 * k + 11;
        constexpr int front_words = words_for(4 * Bits + 8);
        constexpr int back_words = words_for(4 * Bits + 14);
        constexpr int eight_words = words_for(8 * Bits + 22);
        qmp::Word front[front_words], back[back_words], eight[eight_words], root[root_words];
        product<front_words, f1.words, f2.words>(front, f1.w, f2.w);
        product<back_words, f3.words, f4.words>(back, f3.w, f4.w);
        product<eight_words, front_words, back_words>(eight, front, back);
        multiply_add<root_words, eight_words>(root, eight, last, 0);
        product<q_words, root_words, root_words>(Q, root, root);

        // The factors in another order than in the words.
        std::uint64_t r = residue_product(2 * k + 1, last);
        r = residue_product(r, residue_product(4 * k + 1, 12 * k + 7));
        r = residue_product(r, residue_product(4 * k + 3, 12 * k + 5));
        r = residue_product(r, residue_product(6 * k + 1, 12 * k + 1));
        r = residue_product(r, 6 * k + 5);
        check = residue_product(r, r);
    }

    [[gnu::noinline]] static void set_P(qmp::Word* P, std::uint64_t& check, std::uint64_t k) {
        P[0] = huvent_coefficients[0];
        [&]<int... i>(std::integer_sequence<int, i...>) {
            (step<i + 1>(P, k), ...);
        }
        (std::make_integer_sequence<int, huvent_degree>());
        // By the squares of k.
        const std::uint64_t square = qmp::leaf::residue_product(k, k);
        std::uint64_t even = 0;
        std::uint64_t odd = 0;
        for (int i = 0; i <= huvent_degree; i++) {
            const qmp::Word c = huvent_coefficients[i];
            std::uint64_t& half = i % 2 == 0 ? even : odd;
            half = qmp::leaf::residue_sum(half, square, 1,
                                          i < huvent_added_coefficients ? c : 2 * qmp::check_modulus - c);
        }
        check = qmp::leaf::residue_sum(odd, k, even, 1);
    }

  private:
    // P = P k + c_i, or P k - c_i.
    template <int i>
    [[gnu::always_inline]] static void step(qmp::Word* P, std::uint64_t k) {
        constexpr int before = partial_words(i - 1);
        constexpr int after = partial_words(i);
        if constexpr (i < huvent_added_coefficients) {
            qmp::leaf::multiply_add<after, before>(P, P, k, huvent_coefficients[i]);
        } else {
            qmp::leaf::multiply_add<after, before>(P, P, k, 0);
            qmp::Word c[after] = {huvent_coefficients[i]};
            qmp::leaf::subtract<after>(P, c);
        }
    }
};

}  // namespace kelvara
