// Leaves of P, Q, R series as straight-line code, while the indices keep below a power of two.
//
// A Terms type describes a series:
//   alternating                    its terms alternate in sign
//   p_bits, q_bits, r_bits         functions of `bits`: the outputs of a term of index k < 2^bits are below
//                                  two to these powers
//   sum_bits                       P over n terms is below 2^(p_bits + (n - 1) q_bits + sum_bits)
//   longest_range                  terms of the longest leaf
//   template <int Bits> Residues term(Word* P, Word* Q, Word* R, std::uint64_t k) const
// where the last one computes the term of index k < 2^Bits, 1 <= k, into Widths<Terms, Bits, 1> words each.
// An object of the type holds what the series' numbers are, where the type alone does not tell.
//
// Ranges are halved and merged as leaf_bisect() does it, and give the same words and check values. The check
// values come from the factors of the terms and from the formulas of the merges; they know nothing of the
// words of the products that they check.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "multiply/word.h"
#include "numbers/exact_float.h"
#include "series/leaf_residue.h"
#include "series/leaf_words.h"

namespace qmp::leaf {

constexpr int words_for(double bits) {
    int words = 0;
    while (words * 64 < bits) words++;
    return words;
}

constexpr int whole_bits(double bits) {
    const int whole = static_cast<int>(bits);
    return whole < bits ? whole + 1 : whole;
}

// A factor of a term, a * b + c < 2^Bits, in as many words as that takes.
template <int Bits>
struct Factor {
    static constexpr int words = words_for(Bits);
    static_assert(words == 1 || words == 2);
    Word w[words];

    [[gnu::always_inline]] Factor(Word a, Word b, Word c = 0) {
        if constexpr (words == 1) {
            w[0] = a * b + c;
        } else {
            const DoubleWord value = static_cast<DoubleWord>(a) * b + c;
            w[0] = low_word(value);
            w[1] = high_word(value);
        }
    }
    [[gnu::always_inline]] std::uint64_t residue() const {
        if constexpr (Bits <= 61) {
            return w[0];
        } else if constexpr (words == 1) {
            return leaf::residue(w[0]);
        } else {
            return leaf::residue(static_cast<DoubleWord>(w[1]) << 64 | w[0]);
        }
    }
};

// Widths of the outputs over n terms, in words.
template <typename Terms, int Bits, int n>
struct Widths {
    static constexpr int P =
        words_for(Terms::p_bits(Bits) + (n - 1) * Terms::q_bits(Bits) + (n > 1 ? Terms::sum_bits : 0));
    static constexpr int Q = words_for(n * Terms::q_bits(Bits));
    static constexpr int R = words_for(n * Terms::r_bits(Bits));
};

template <typename Terms, int Bits, int n>
void sum_range(const Terms& terms, Word* P, Word* Q, Word* R, Residues& checks, std::uint64_t a);

template <typename Terms, int Bits, int n>
[[gnu::always_inline]] inline void sum_half(const Terms& terms, Word* P, Word* Q, Word* R, Residues& checks,
                                            std::uint64_t a) {
    if constexpr (n == 1) {
        checks = terms.template term<Bits>(P, Q, R, a + 1);
    } else {
        sum_range<Terms, Bits, n>(terms, P, Q, R, checks, a);
    }
}

// The terms of index a + 1 to a + n < 2^Bits. A function for each length: code that repeated the shorter
// ranges where they are merged would be half as long again, for 3 % of the time.
template <typename Terms, int Bits, int n>
[[gnu::noinline]] void sum_range(const Terms& terms, Word* P, Word* Q, Word* R, Residues& checks,
                                 std::uint64_t a) {
    constexpr int n0 = n / 2;
    constexpr int n1 = n - n0;
    using W = Widths<Terms, Bits, n>;
    using W0 = Widths<Terms, Bits, n0>;
    using W1 = Widths<Terms, Bits, n1>;
    Word P0[W0::P], Q0[W0::Q], R0[W0::R];
    Word P1[W1::P], Q1[W1::Q], R1[W1::R];
    Residues h0, h1;
    sum_half<Terms, Bits, n0>(terms, P0, Q0, R0, h0, a);
    sum_half<Terms, Bits, n1>(terms, P1, Q1, R1, h1, a + n0);

    // T = R0 P1 may be narrower than P.
    constexpr int t_words = std::min(W0::R + W1::P, W::P);
    Word T[W::P];
    product<t_words, W0::R, W1::P>(T, R0, P1);
    std::fill(T + t_words, T + W::P, Word{0});
    product<W::P, W0::P, W1::Q>(P, P0, Q1);
    product<W::Q, W0::Q, W1::Q>(Q, Q0, Q1);
    product<W::R, W0::R, W1::R>(R, R0, R1);
    if constexpr (Terms::alternating && n0 % 2 == 1) {
        subtract<W::P>(P, T);
        checks.P = residue_difference(h0.P, h1.Q, h0.R, h1.P);
    } else {
        add<W::P>(P, T);
        checks.P = residue_sum(h0.P, h1.Q, h0.R, h1.P);
    }
    checks.Q = residue_product(h0.Q, h1.Q);
    checks.R = residue_product(h0.R, h1.R);
}

// The function of one range length, and the words that it writes.
template <typename Terms>
struct RangeFunction {
    void (*sum)(const Terms& terms, Word* P, Word* Q, Word* R, Residues& checks, std::uint64_t a);
    std::uint64_t P;
    std::uint64_t Q;
    std::uint64_t R;
};

constexpr std::uint64_t shortest_range = 2;

// By length, from shortest_range terms on.
template <typename Terms, int Bits>
constexpr auto range_functions = []<int... i>(std::integer_sequence<int, i...>) {
    return std::array{RangeFunction<Terms>{
        sum_range<Terms, Bits, shortest_range + i>, Widths<Terms, Bits, shortest_range + i>::P,
        Widths<Terms, Bits, shortest_range + i>::Q, Widths<Terms, Bits, shortest_range + i>::R}...};
}
(std::make_integer_sequence<int, Terms::longest_range - shortest_range + 1>());

inline void set_range(ExactFloat& x, std::uint64_t words, std::uint64_t check) {
    x.T = x.base;
    x.L = words;
    while (x.T[x.L - 1] == 0) x.L--;
    x.exp = 0;
    x.hash = check_reduce(check);
}

template <typename Terms, int Bits>
bool sum_leaf_below(const Terms& terms, ExactFloat& P, ExactFloat& Q, ExactFloat& R, std::uint64_t a,
                    std::uint64_t b) {
    if (b >> Bits != 0) return false;
    const RangeFunction<Terms>& range = range_functions<Terms, Bits>[b - a - shortest_range];
    if (P.AL < range.P || Q.AL < range.Q || R.AL < range.R) return false;
    Residues checks;
    range.sum(terms, P.base, Q.base, R.base, checks, a);
    set_range(P, range.P, checks.P);
    set_range(Q, range.Q, checks.Q);
    set_range(R, range.R, checks.R);
    return true;
}

// Sums (a, b] with the narrowest code of those for indices below 2^Bits, in increasing order. False, with
// nothing written, when there is none: for a single term, for indices beyond, and for buffers that are
// shorter than the widths, even if the sums would fit.
template <int... Bits, typename Terms>
bool sum_leaf(const Terms& terms, ExactFloat& P, ExactFloat& Q, ExactFloat& R, std::uint64_t a,
              std::uint64_t b) {
    if (b - a < shortest_range || b - a > Terms::longest_range) return false;
    return (sum_leaf_below<Terms, Bits>(terms, P, Q, R, a, b) || ...);
}

}  // namespace qmp::leaf
