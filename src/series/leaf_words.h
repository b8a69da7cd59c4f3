// Integers of a few words whose number is known when the program is compiled: the arithmetic of leaf ranges.
//
// Straight-line code: no lengths, no trimming, no loops at run time. An integer is an array of its width in
// words, little-endian; its top words may be zero. Widths come from bounds on the values, so a product may be
// narrower than its operands together and still be whole.
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
        // The compiler would take the carries through registers of their own, in twice the instructions.
        Word high;
        asm("mulq %[b]\n\t"
            "addq %[a], %[low]\n\t"
            "adcq %[high], %[middle]\n\t"
            "adcq $0, %[top]"
            : [a] "+&a"(a), [high] "=&d"(high), [low] "+&r"(c.low), [middle] "+&r"(c.middle),
              [top] "+&r"(c.high)
            : [b] "rm"(b)
            : "cc");
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

// Products of up to this many pairs of words stand where they are used: a call would cost as much.
constexpr int largest_inline_product = 24;
// From this many pairs of words on the kernels that run in loops are faster: straight-line code of that size
// no longer stays in the processor's instruction caches.
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

// One chain of carries through all words, which the compiler does not make of additions.
#define QMP_CARRY_CHAIN(operation)                                                                    \
    asm("xorl %k[word], %k[word]\n\t"                                                                 \
        ".set qmp_word, 0\n\t"                                                                        \
        ".rept %c[width]\n\t"                                                                         \
        "movq 8*qmp_word(%[b]), %[word]\n\t" operation                                                \
        " %[word], 8*qmp_word(%[a])\n\t"                                                              \
        ".set qmp_word, qmp_word+1\n\t"                                                               \
        ".endr"                                                                                       \
        : [word] "=&r"(word), "+m"(*reinterpret_cast<Word(*)[Width]>(a))                              \
        : [a] "r"(a), [b] "r"(b), [width] "i"(Width), "m"(*reinterpret_cast<const Word(*)[Width]>(b)) \
        : "cc")

// a[0 .. Width) += b or -= b. The result is neither negative nor wider.
template <int Width>
[[gnu::always_inline]] inline void add(Word* a, const Word* b) {
    Word word;
    QMP_CARRY_CHAIN("adcq");
}
template <int Width>
[[gnu::always_inline]] inline void subtract(Word* a, const Word* b) {
    Word word;
    QMP_CARRY_CHAIN("sbbq");
}

#undef QMP_CARRY_CHAIN

}  // namespace qmp::leaf
