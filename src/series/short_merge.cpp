#include "series/short_merge.h"

#include <algorithm>

#include "errors/check.h"
#include "multiply/basecase/word_kernels.h"
#include "numbers/basecase_product.h"
#include "numbers/check_value.h"
#include "series/exact_sum.h"

namespace qmp {

namespace {

void require_product_capacity(const ExactFloat& destination, const ExactFloat& a, const ExactFloat& b) {
    require_capacity("ExactFloat::set_mul()", destination.AL, a.L + b.L);
}

// The words of a product, and their number.
struct ShortProduct {
    Word words[longest_short_product];
    std::uint64_t n;

    ShortProduct(const ExactFloat& a, const ExactFloat& b) : n(a.L + b.L) {
        basecase_product(words, a.T, a.L, b.T, b.L);
        n -= words[n - 1] == 0;
    }
};

// destination[0 .. n) = a[0 .. n) + or - b[0 .. m), m <= n. Returns what leaves the top.
bool sum_words(Word* destination, const Word* a, std::uint64_t n, const Word* b, std::uint64_t m,
               bool subtract) {
    const bool carry = subtract ? sub_words(destination, a, b, m) : add_words(destination, a, b, m);
    std::copy(a + m, a + n, destination + m);
    return subtract ? sub_borrow(destination + m, n - m, carry) : add_carry(destination + m, n - m, carry);
}

}  // namespace

void set_short_product(ExactFloat& destination, const ExactFloat& a, const ExactFloat& b) {
    require_product_capacity(destination, a, b);
    const std::uint64_t n = a.L + b.L;
    basecase_product(destination.base, a.T, a.L, b.T, b.L);
    destination.T = destination.base;
    destination.L = n - (destination.T[n - 1] == 0);
    destination.exp = a.exp + b.exp;
    destination.hash = check_mul(a.hash, b.hash);
}

void multiply_short_in_place(ExactFloat& a, const ExactFloat& b) {
    require_product_capacity(a, a, b);
    const ShortProduct product(a, b);
    std::copy_n(product.words, product.n, a.base);
    a.T = a.base;
    a.L = product.n;
    a.exp += b.exp;
    a.hash = check_mul(a.hash, b.hash);
}

void multiply_short_and_add(ExactFloat& a, const ExactFloat& b, const ExactFloat& c, bool subtract) {
    require_product_capacity(a, a, b);
    const ShortProduct product(a, b);
    const std::uint64_t n = product.n;
    a.T = a.base;
    a.exp += b.exp;
    a.hash = check_mul(a.hash, b.hash);
    // Mostly nothing has been stripped yet: the sum goes straight to its place, with a word for its carry.
    if (a.exp == c.exp && c.L <= n && n < a.AL) {
        const bool carry = sum_words(a.T, product.words, n, c.T, c.L, subtract);
        a.L = n;
        if (!subtract) {
            a.T[n] = carry;
            a.L += carry;
            a.hash = check_add(a.hash, c.hash);
            return;
        }
        while (a.L != 0 && a.T[a.L - 1] == 0) a.L--;
        if (!carry && a.L != 0) {
            a.hash = check_sub(a.hash, c.hash);
            return;
        }
    }
    // The general sum, and the errors of a difference that is not positive.
    std::copy_n(product.words, n, a.T);
    a.L = n;
    if (subtract) {
        subtract_in_place(a, c);
    } else {
        add_in_place(a, c);
    }
}

}  // namespace qmp
