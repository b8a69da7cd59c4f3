// Integers of a few words whose number is known when the program is compiled: the arithmetic of leaf ranges.
//
// Straight-line code without assembly, which would gain 8 % of a leaf, 1 % of the ranges around it: no
// lengths, no trimming, no loops at run time. An integer is an array of its width in words, little-endian;
// its top words may be zero. Widths come from bounds on the values, so a product may be narrower than its
// operands together and still be whole.
#pragma once

#include <algorithm>
#include <utility>

#include "multiply/word.h"
#include "numbers/basecase_product.h"

namespace qmp::leaf {

// The running sum of one column of a product, with what it hands to the next columns.
struct Column {
    Word low = 0;
    Word middle = 0;
    Word high = 0;
};

// Adds a * b to the lowest Words words of a column: beyond them nothing goes, or nobody wants it.
template <int Words>
[[gnu::always_inline]] inline void add_product(Column& c, Word a, Word b) {
    static_assert(1 <= Words && Words <= 3);
    if constexpr (Words == 1) {
        c.low += a * b;
    } else if constexpr (Words == 2) {
        const DoubleWord sum =
            static_cast<DoubleWord>(a) * b + (static_cast<DoubleWord>(c.middle) << 64 | c.low);
        c.low = low_word(sum);
        c.middle = high_word(sum);
    } else {
        const DoubleWord product = static_cast<DoubleWord>(a) * b;
        const DoubleWord sum = product + (static_cast<DoubleWord>(c.middle) << 64 | c.low);
        c.low = low_word(sum);
        c.middle = high_word(sum);
        c.high += sum < product;
    }
}

// The words of a product from column K up; `c` is what the columns below hand up.
template <int Width, int La, int Lb, int K>
[[gnu::always_inline]] inline void product_columns(Word* destination, const Word* a, const Word* b,
                                                   Column c) {
    constexpr int first = K < Lb ? 0 : K - Lb + 1;
    constexpr int products = std::min({K + 1, La, Lb, La + Lb - 1 - K});
    constexpr bool is_last = K + 1 == La + Lb - 1;
    // A product and one word more fit two words. The first two columns, and every column of a product by one
    // word, start with one word at most.
    constexpr bool starts_low = K < 2 || std::min(La, Lb) == 1;
    constexpr int words = std::min(is_last ? 2 : 3, Width - K);
    [&]<int... i>(std::integer_sequence<int, i...>) {
        (add_product < i == 0 && starts_low ? std::min(words, 2)
                                            : words > (c, a[first + i], b[K - first - i]),
         ...);
    }
    (std::make_integer_sequence<int, products>());
    destination[K] = c.low;
    if constexpr (K + 1 < Width) {
        if constexpr (is_last) {
            destination[K + 1] = c.middle;
        } else {
            product_columns<Width, La, Lb, K + 1>(destination, a, b, {c.middle, c.high, 0});
        }
    }
}

// Products of up to this many pairs of words stand where they are used.
constexpr int largest_inline_product = 9;
// From this many pairs of words on the kernels that run in loops are as fast, and they do not crowd the
// instruction cache: at 196 pairs straight-line code takes more than twice their time.
constexpr int smallest_looped_product = 64;

template <int Width, int La, int Lb>
[[gnu::noinline]] void product_function(Word* destination, const Word* a, const Word* b) {
    if constexpr (La * Lb < smallest_looped_product) {
        product_columns<Width, La, Lb, 0>(destination, a, b, {});
    } else if constexpr (Width == La + Lb) {
        basecase_product(destination, a, La, b, Lb);
    } else {
        Word whole[La + Lb];
        basecase_product(whole, a, La, b, Lb);
        std::copy_n(whole, Width, destination);
    }
}

// destination[0 .. Width) = a[0 .. La) * b[0 .. Lb), a product whose words from Width on are zero. The
// destination overlaps no operand.
template <int Width, int La, int Lb>
[[gnu::always_inline]] inline void product(Word* __restrict destination, const Word* a, const Word* b) {
    static_assert(Width <= La + Lb && Width >= La && Width >= Lb);
    if constexpr (La < Lb) {
        product<Width, Lb, La>(destination, b, a);
    } else if constexpr (La * Lb <= largest_inline_product) {
        product_columns<Width, La, Lb, 0>(destination, a, b, {});
    } else {
        product_function<Width, La, Lb>(destination, a, b);
    }
}

// destination[0 .. Width) = a[0 .. La) * w + c, a value that fits. The destination may be a.
template <int Width, int La>
[[gnu::always_inline]] inline void multiply_add(Word* destination, const Word* a, Word w, Word c) {
    static_assert(Width == La || Width == La + 1);
    [&]<int... i>(std::integer_sequence<int, i...>) {
        const auto step = [&](int j) __attribute__((always_inline)) {
            const DoubleWord sum = static_cast<DoubleWord>(a[j]) * w + c;
            destination[j] = low_word(sum);
            c = high_word(sum);
        };
        (step(i), ...);
    }
    (std::make_integer_sequence<int, La>());
    if constexpr (Width > La) destination[La] = c;
}

// Words I to Width - 1 of a sum or a difference.
template <int I, int Width, bool Subtract>
[[gnu::always_inline]] inline void combine(Word* a, const Word* b, bool carry) {
    Word sum;
    bool over;
    if constexpr (Subtract) {
        over = __builtin_sub_overflow(a[I], b[I], &sum);
        over |= __builtin_sub_overflow(sum, Word{carry}, &a[I]);
    } else {
        over = __builtin_add_overflow(a[I], b[I], &sum);
        over |= __builtin_add_overflow(sum, Word{carry}, &a[I]);
    }
    if constexpr (I + 1 < Width) combine<I + 1, Width, Subtract>(a, b, over);
}

// a[0 .. Width) += b or -= b. The result is neither negative nor wider.
template <int Width>
[[gnu::always_inline]] inline void add(Word* a, const Word* b) {
    combine<0, Width, false>(a, b, false);
}
template <int Width>
[[gnu::always_inline]] inline void subtract(Word* a, const Word* b) {
    combine<0, Width, true>(a, b, false);
}

}  // namespace qmp::leaf
