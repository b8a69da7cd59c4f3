#include "multiply/basecase/exact_division.h"

#include <algorithm>

#include "multiply/basecase/schoolbook.h"
#include "multiply/basecase/word_kernels.h"

namespace qmp {

namespace {

// The schoolbook kernels work on columns of seven words.
constexpr std::uint64_t block = 7;
constexpr std::uint64_t shortest_blocked = 12;

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
// 2^(64 n), take the places of the words cleared. The multiples of d's lowest block of words, which decide on
// the next words of the quotient, are added one by one, those of the others a block at a time.
void clear_from_below(Word* x, std::uint64_t n, const Word* d, std::uint64_t m) {
    const Word negative_inverse = Word{0} - inverse_word(d[0]);
    const std::uint64_t low = m < shortest_blocked ? m : block;
    Word product[block + longest_divisor];
    for (std::uint64_t i = 0; i < n; i += low) {
        const std::uint64_t end = std::min(n, i + low);
        for (std::uint64_t j = i; j < end; j++) {
            const Word q = x[j] * negative_inverse;
            const std::uint64_t length = std::min(low, n - j);
            propagate(x, j + length, n, mul_add_word(x + j, d, length, q));
            x[j] = q;
        }
        if (low == m || i + low >= n) continue;
        const std::uint64_t length = std::min(m - low, n - i - low);
        const std::uint64_t rows = end - i;
        mulB(product, d + low, length, x + i, rows);
        const std::uint64_t written = std::min(length + rows, n - i - low);
        propagate(x, i + low + written, n, add_words(x + i + low, x + i + low, product, written));
    }
}

void negate(Word* x, std::uint64_t n) {
    bool borrow = false;
    for (std::uint64_t i = 0; i < n; i++) {
        const Word negative = Word{0} - x[i] - borrow;
        borrow = borrow || x[i] != 0;
        x[i] = negative;
    }
}

}  // namespace

Word inverse_word(Word odd) {
    Word x = 3 * odd ^ 2;  // to 5 bits
    for (int bits = 5; bits < 64; bits *= 2) x *= 2 - odd * x;
    return x;
}

std::uint64_t divide_exact(Word* x, std::uint64_t n, const Word* d, std::uint64_t m) {
    const std::uint64_t quotient = n - m + 1;
    if (m == 1) {
        divide_exact_by_word(x, n, d[0]);
    } else {
        clear_from_below(x, quotient, d, m);
        negate(x, quotient);
    }
    return quotient - (x[quotient - 1] == 0);
}

}  // namespace qmp
