#include "multiply/hybrid_ntt/ring.h"

#include <algorithm>

#include "multiply/basecase/word_kernels.h"

namespace qmp::hybrid_ntt {
namespace {

// Adds a small number; returns the carry.
bool add_small(Word* x, std::uint64_t n, Word value) {
    x[0] += value;
    return x[0] < value && add_carry(x + 1, n - 1, true);
}

bool sub_small(Word* x, std::uint64_t n, Word value) {
    const bool borrow = x[0] < value;
    x[0] -= value;
    return borrow && sub_borrow(x + 1, n - 1, true);
}

}  // namespace

// 2^N is -1: what stands above the body is taken from it, and what that borrows is given back.
void Ring::normalise(Word* residue, std::int64_t surplus) const {
    residue[words_] = 0;
    if (surplus > 0) {
        if (sub_small(residue, words_, static_cast<Word>(surplus)))
            residue[words_] = add_small(residue, words_, 1);
    } else if (surplus < 0) {
        if (add_small(residue, words_, static_cast<Word>(-surplus))) {
            // 2^N + x, x small: x - 1, or 2^N itself.
            residue[words_] = sub_small(residue, words_, 1);
            if (residue[words_]) std::fill(residue, residue + words_, 0);
        }
    }
}

void Ring::add(Word* sum, const Word* a, const Word* b) const {
    const Word above = a[words_] + b[words_];
    const bool carry = add_words(sum, a, b, words_);
    normalise(sum, static_cast<std::int64_t>(above) + carry);
}

void Ring::sub(Word* difference, const Word* a, const Word* b) const {
    const auto above = static_cast<std::int64_t>(a[words_]) - static_cast<std::int64_t>(b[words_]);
    const bool borrow = sub_words(difference, a, b, words_);
    normalise(difference, above - borrow);
}

void Ring::negate(Word* residue) const {
    if (residue[words_]) {
        residue[words_] = 0;
        residue[0] = 1;
        return;
    }
    if (std::all_of(residue, residue + words_, [](Word w) { return w == 0; })) return;
    // 2^N + 1 - x = (2^N - 1 - x) + 2
    for (std::uint64_t i = 0; i < words_; ++i) residue[i] = ~residue[i];
    residue[words_] = add_small(residue, words_, 2);
}

void Ring::shift_left(Word* result, const Word* x, std::uint64_t shift) const {
    const std::uint64_t n = words_;
    const bool negative = (shift >= bits()) != (x[n] != 0);
    if (shift >= bits()) shift -= bits();
    if (x[n]) {
        // -1 times a power of 2, which `negative` has counted.
        std::fill(result, result + n + 1, 0);
        result[shift / 64] = Word{1} << shift % 64;
        if (negative) negate(result);
        return;
    }
    // x 2^shift = high 2^N + low: low - high. The lowest q words are those of -high, word q has parts of
    // both.
    const std::uint64_t q = shift / 64;
    const int r = static_cast<int>(shift % 64);
    const Word* high = x + (n - q);
    if (r == 0) {
        for (std::uint64_t i = 0; i < q; ++i) result[i] = ~high[i];
        for (std::uint64_t i = q; i < n; ++i) result[i] = x[i - q];
        result[n] = 0;
        // ~high = 2^(64 q) - 1 - high: 1 is missing at the bottom, and too much at word q.
        if (q != 0) {
            const bool surplus = add_small(result, q, 1);
            if (!surplus && sub_borrow(result + q, n - q, true)) normalise(result, -1);
        }
    } else {
        for (std::uint64_t i = 0; i < q; ++i) {
            const Word below = high[static_cast<std::int64_t>(i) - 1];
            result[i] = ~(high[i] << r | below >> (64 - r));
        }
        const Word top_of_high = x[n - 1] >> (64 - r);
        const Word low = x[0] << r;
        for (std::uint64_t i = q + 1; i < n; ++i) result[i] = x[i - q] << r | x[i - q - 1] >> (64 - r);
        result[q] = low - top_of_high;
        result[n] = 0;
        bool borrow = low < top_of_high && sub_borrow(result + q + 1, n - q - 1, true);
        if (q != 0) {
            const bool surplus = add_small(result, q, 1);
            if (!surplus && sub_borrow(result + q, n - q, true)) borrow = true;
        }
        if (borrow) normalise(result, -1);
    }
    if (negative) negate(result);
}

void Ring::multiply_by_root(Word* result, const Word* x, std::uint64_t exponent, Word* spare) const {
    const std::uint64_t shift = exponent / 2;
    if (exponent % 2 == 0) {
        shift_left(result, x, shift);
        return;
    }
    const std::uint64_t circle = 2 * bits();
    shift_left(result, x, (shift + bits() / 4 * 3) % circle);
    shift_left(spare, x, (shift + bits() / 4) % circle);
    sub(result, result, spare);
}

void Ring::reduce(Word* residue, const Word* product) const {
    const bool borrow = sub_words(residue, product, product + words_, words_);
    normalise(residue, -static_cast<std::int64_t>(borrow));
}

}  // namespace qmp::hybrid_ntt
