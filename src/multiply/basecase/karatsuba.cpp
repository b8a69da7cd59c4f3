#include "multiply/basecase/karatsuba.h"

#include <algorithm>
#include <utility>

#include "multiply/basecase/schoolbook.h"
#include "multiply/basecase/word_kernels.h"

namespace qmp {

std::uint64_t c64i_sqr_threshold = 15;
std::uint64_t c64i_mul_threshold = 14;
std::uint64_t c32i_sqr_threshold = 16;
std::uint64_t c32i_mul_threshold = 18;

namespace {

// Words that a recursion takes: two low halves per level, down to the threshold. Operands of a level are
// low halves of the level above, ceil(m / 2) words.
std::uint64_t halving_sum(std::uint64_t n, std::uint64_t threshold) {
    std::uint64_t sum = 0;
    for (std::uint64_t m = n; m >= threshold;) {
        const std::uint64_t even = m + (m & 1);
        sum += even;
        m = even / 2;
    }
    return sum;
}

// The two halves of an operand; the low one is the longer by at most a word.
template <typename W>
struct Halves {
    const W* low;
    const W* high;
    std::uint64_t low_length;
    std::uint64_t high_length;

    Halves(const W* words, std::uint64_t n)
        : low(words), high(words + (n - n / 2)), low_length(n - n / 2), high_length(n / 2) {}

    bool low_is_smaller() const {
        if (low_length > high_length && low[high_length] != 0) return false;
        for (std::uint64_t i = high_length; i-- > 0;) {
            if (low[i] != high[i]) return low[i] < high[i];
        }
        return false;
    }

    // difference[0 .. low_length) = |low - high|. Returns whether low - high is negative.
    bool subtract(W* difference) const {
        const bool negative = low_is_smaller();
        const bool odd = low_length > high_length;
        if (negative) {
            // The low half's own top word is zero here.
            sub_words(difference, high, low, high_length);
            if (odd) difference[high_length] = 0;
        } else {
            const bool borrow = sub_words(difference, low, high, high_length);
            if (odd) difference[high_length] = static_cast<W>(low[high_length] - borrow);
        }
        return negative;
    }
};

// The destination holds lo * lo (2l words) and hi * hi (2h words), `middle` the product of the differences.
// Adds lo * hi' + hi * lo' = lo lo' + hi hi' -+ middle at word l.
template <typename W>
void add_middle_term(W* destination, W* middle, std::uint64_t l, std::uint64_t h, bool subtract) {
    int carry = subtract ? -static_cast<int>(sub_words(middle, destination, middle, 2 * l))
                         : static_cast<int>(add_words(middle, destination, middle, 2 * l));
    const bool high_carry = add_words(middle, middle, destination + 2 * l, 2 * h);
    carry += add_carry(middle + 2 * h, 2 * (l - h), high_carry);
    carry += add_words(destination + l, destination + l, middle, 2 * l);
    add_signed_carry(destination + 3 * l, 2 * h - l, carry);
}

// Adds a product of 2n words at a place where n words stand and the rest above is not yet written.
template <typename W>
void add_over_edge(W* destination, const W* product, std::uint64_t n) {
    const bool carry = add_words(destination, destination, product, n);
    std::copy_n(product + n, n, destination + n);
    add_carry(destination + n, n, carry);
}

// Adds a product of n words into `length` >= n words.
template <typename W>
void add_inside(W* destination, std::uint64_t length, const W* product, std::uint64_t n) {
    const bool carry = add_words(destination, destination, product, n);
    add_carry(destination + n, length - n, carry);
}

// A in blocks of n words, the length of B; more than two of them. Block t's product with B belongs at word
// t * n of the destination and overlaps both of its neighbours, so that of each pair of blocks one is
// written in its place and the other is formed in scratch and added.
template <typename W>
void multiply_blocks(W* destination, const W* A, std::uint64_t LA, const W* B, std::uint64_t n, W* scratch) {
    W* product = scratch;
    W* deeper = scratch + 2 * n;

    elmK(destination, A, B, n, deeper);
    std::uint64_t at = n;  // the next block
    while (LA - at >= 3 * n) {
        elmK(destination + at + n, A + at + n, B, n, deeper);
        elmK(product, A + at, B, n, deeper);
        add_inside(destination + at, 3 * n, product, 2 * n);
        at += 2 * n;
    }
    // n to 3n - 1 words are left.
    if (LA - at > 2 * n) {
        elmK(product, A + at, B, n, deeper);
        add_over_edge(destination + at, product, n);
        at += n;
    }
    if (LA - at == n) {
        elmK(product, A + at, B, n, deeper);
        add_over_edge(destination + at, product, n);
        return;
    }
    const std::uint64_t tail = LA - at - n;
    mulK(destination + at + n, A + at + n, tail, B, n, scratch);
    elmK(product, A + at, B, n, deeper);
    add_inside(destination + at, 2 * n + tail, product, 2 * n);
}

}  // namespace

template <typename W>
void elmK(W* destination, const W* A, const W* B, std::uint64_t n, W* scratch) {
    const std::uint64_t threshold = karatsuba_product_threshold<W>();
    if (n < threshold) return mulB(destination, A, n, B, n);

    const Halves<W> a(A, n);
    const Halves<W> b(B, n);
    const std::uint64_t l = a.low_length;
    const std::uint64_t h = a.high_length;
    const auto product = [&](W* result, const W* x, const W* y, std::uint64_t length) {
        if (h >= threshold) {
            elmK(result, x, y, length, scratch + 2 * l);
        } else {
            mulB(result, x, length, y, length);
        }
    };

    // The differences live in the destination until their product is formed.
    const bool a_negative = a.subtract(destination);
    const bool b_negative = b.subtract(destination + l);
    product(scratch, destination, destination + l, l);
    product(destination, a.low, b.low, l);
    product(destination + 2 * l, a.high, b.high, h);
    add_middle_term(destination, scratch, l, h, a_negative == b_negative);
}

template <typename W>
void sqrK(W* destination, const W* A, std::uint64_t n, W* scratch) {
    if (n < karatsuba_square_threshold<W>()) return sqrB(destination, A, n);

    const Halves<W> a(A, n);
    const std::uint64_t l = a.low_length;
    const std::uint64_t h = a.high_length;
    // The halves go by the product's threshold, not by the square's: at one length between the two, the
    // recursion is entered only to find itself below its own threshold.
    const auto square = [&](W* result, const W* x, std::uint64_t length) {
        if (h >= karatsuba_product_threshold<W>()) {
            sqrK(result, x, length, scratch + 2 * l);
        } else {
            sqrB(result, x, length);
        }
    };

    a.subtract(destination);
    square(scratch, destination, l);
    square(destination, a.low, l);
    square(destination + 2 * l, a.high, h);
    add_middle_term(destination, scratch, l, h, true);
}

template <typename W>
void mulK(W* destination, const W* A, std::uint64_t LA, const W* B, std::uint64_t LB, W* scratch) {
    if (LA < LB) {
        std::swap(A, B);
        std::swap(LA, LB);
    }
    if (LA == LB) return elmK(destination, A, B, LA, scratch);
    if (LB < karatsuba_product_threshold<W>()) return mulB(destination, A, LA, B, LB);
    if (LA > 2 * LB) return multiply_blocks(destination, A, LA, B, LB, scratch);

    mulK(destination + LB, A + LB, LA - LB, B, LB, scratch);
    elmK(scratch, A, B, LB, scratch + 2 * LB);
    std::copy_n(scratch, LB, destination);
    add_inside(destination + LB, LA, scratch + LB, LB);
}

template <typename W>
std::uint64_t elmK_scratch(std::uint64_t n) {
    return halving_sum(n, karatsuba_product_threshold<W>());
}

template <typename W>
std::uint64_t sqrK_scratch(std::uint64_t n) {
    return halving_sum(n, karatsuba_square_threshold<W>());
}

template <typename W>
std::uint64_t mulK_scratch(std::uint64_t LA, std::uint64_t LB) {
    const std::uint64_t n = std::min(LA, LB);
    if (LA == LB) return elmK_scratch<W>(n);
    // Products of the operand's remainder with B come first and are gone before the block is formed.
    return n < karatsuba_product_threshold<W>() ? 0 : 2 * n + elmK_scratch<W>(n);
}

template <typename W>
std::uint64_t karatsuba_scratch_bytes(std::uint64_t n) {
    constexpr std::uint64_t word = sizeof(W);
    const std::uint64_t square = word * sqrK_scratch<W>(n);
    const std::uint64_t margin = word * (n + 1);
    if (n < karatsuba_product_threshold<W>()) return square + margin;
    return std::max(square, 2 * word * n + word * elmK_scratch<W>(n)) + margin;
}

QMP_KARATSUBA(, std::uint64_t);
QMP_KARATSUBA(, std::uint32_t);

}  // namespace qmp
