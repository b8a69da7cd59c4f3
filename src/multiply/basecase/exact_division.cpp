#include "multiply/basecase/exact_division.h"

#include <algorithm>

#include "multiply/basecase/schoolbook.h"
#include "multiply/basecase/word_kernels.h"

namespace qmp {

namespace {

// The schoolbook kernels work on columns of seven words.
constexpr std::uint64_t block = 7;
constexpr std::uint64_t shortest_blocked = 10;

// x / d for a single word. Each word of the quotient waits for the one below it.
void divide_exact_by_word(Word* x, std::uint64_t n, Word d) {
    const Word inverse = inverse_word(d);
    Word borrow = 0;
    for (std::uint64_t i = 0; i < n; i++) {
        const Word difference = x[i] - borrow;
        const bool below = x[i] < borrow;
        x[i] = difference * inverse;
        borrow = high_word(static_cast<DoubleWord>(x[i]) * d) + below;
    }
}

// Adds a carry to x[i] and what is above it.
void propagate(Word* x, std::uint64_t i, std::uint64_t n, Word carry) {
    if (i >= n) return;
    x[i] += carry;
    if (x[i] < carry) add_carry(x + i + 1, n - i - 1, true);
}

// Multiples of d are added that clear the n words of x from below: the words of the negative quotient, modulo
// 2^(64 n), take the places of the words cleared. One word at a time.
void clear_word_by_word(Word* x, std::uint64_t n, const Word* d, std::uint64_t m) {
    const Word negative_inverse = Word{0} - inverse_word(d[0]);
    for (std::uint64_t i = 0; i < n; i++) {
        const Word q = x[i] * negative_inverse;
        const std::uint64_t length = std::min(m, n - i);
        propagate(x, i + length, n, mul_add_word(x + i, d, length, q));
        x[i] = q;
    }
}

// The same a block at a time, for m >= block.
void clear_block_by_block(Word* x, std::uint64_t n, const Word* d, std::uint64_t m) {
    Word negative_inverse[block];
    invert_low_words(negative_inverse, block, d, block);
    negate_words(negative_inverse, block);
    Word product[block + longest_divisor];
    std::uint64_t i = 0;
    for (; i + block <= n; i += block) {
        Word q[2 * block];
        mulB(q, x + i, block, negative_inverse, block);
        const std::uint64_t length = std::min(m, n - i);
        mulB(product, d, length, q, block);
        // The lowest block of the sum is zero, and a carry comes out of it unless it was zero before.
        const bool carry = std::any_of(x + i, x + i + block, [](Word w) { return w != 0; });
        const std::uint64_t written = std::min(length, n - i - block);
        const bool above = add_words(x + i + block, x + i + block, product + block, written, carry);
        propagate(x, i + block + written, n, above);
        std::copy_n(q, block, x + i);
    }
    clear_word_by_word(x + i, n - i, d, m);
}

}  // namespace

Word inverse_word(Word odd) {
    Word x = 3 * odd ^ 2;  // to 5 bits
    for (int bits = 5; bits < 64; bits *= 2) x *= 2 - odd * x;
    return x;
}

void invert_low_words(Word* inverse, std::uint64_t n, const Word* d, std::uint64_t m) {
    std::fill_n(inverse, n, Word{0});
    inverse[0] = 1;
    clear_word_by_word(inverse, n, d, m);
    negate_words(inverse, n);
}

void negate_words(Word* x, std::uint64_t n) {
    bool borrow = false;
    for (std::uint64_t i = 0; i < n; i++) {
        const Word negative = Word{0} - x[i] - borrow;
        borrow = borrow || x[i] != 0;
        x[i] = negative;
    }
}

std::uint64_t divide_exact(Word* x, std::uint64_t n, const Word* d, std::uint64_t m) {
    const std::uint64_t quotient = n - m + 1;
    if (m == 1) {
        divide_exact_by_word(x, n, d[0]);
    } else {
        (m < shortest_blocked ? clear_word_by_word : clear_block_by_block)(x, quotient, d, m);
        negate_words(x, quotient);
    }
    return quotient - (x[quotient - 1] == 0);
}

}  // namespace qmp
