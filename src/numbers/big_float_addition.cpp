// Sums and differences of BigFloats, staged through blocks of 128 words.
//
// For each block the words of both operands at the same absolute positions are gathered side by side,
// zero where an operand has none, and combined there. The carry runs from block to block.
#include <algorithm>
#include <cstring>

#include "errors/check.h"
#include "multiply/basecase/word_kernels.h"
#include "numbers/big_float.h"
#include "numbers/big_float_window.h"

namespace qmp {
namespace {

constexpr std::uint64_t block_words = big_float_addition_buffer;

// buffer = the operand's words at positions [position, position + n).
void gather(Word* buffer, BigFloatView operand, std::int64_t position, std::uint64_t n) {
    const std::int64_t end = position + static_cast<std::int64_t>(n);
    const std::int64_t low = std::max(position, operand.exp);
    const std::int64_t high = std::min(end, operand.top());
    if (operand.is_zero() || low >= high) {
        std::fill_n(buffer, n, Word{0});
        return;
    }
    std::fill(buffer, buffer + (low - position), Word{0});
    std::memcpy(buffer + (low - position), operand.T + (low - operand.exp),
                static_cast<std::uint64_t>(high - low) * sizeof(Word));
    std::fill(buffer + (high - position), buffer + n, Word{0});
}

using BlockOperation = bool (*)(Word*, const Word*, const Word*, std::uint64_t, bool);

// destination = the operation on the operands' words at positions [bottom, bottom + n). Returns the carry.
bool combine_window(BlockOperation operation, Word* destination, BigFloatView a, BigFloatView b,
                    std::int64_t bottom, std::uint64_t n) {
    Word words_a[block_words];
    Word words_b[block_words];
    bool carry = false;
    for (std::uint64_t done = 0; done < n;) {
        const std::uint64_t block = std::min(n - done, block_words);
        const std::int64_t position = bottom + static_cast<std::int64_t>(done);
        gather(words_a, a, position, block);
        gather(words_b, b, position, block);
        carry = operation(destination + done, words_a, words_b, block, carry);
        done += block;
    }
    return carry;
}

// Compares the words of two numbers with the same top; the longer one's extra words decide a tie.
int compare_words(BigFloatView a, BigFloatView b) {
    const std::uint64_t common = std::min(a.L, b.L);
    for (std::uint64_t i = 1; i <= common; ++i) {
        const Word word_a = a.T[a.L - i];
        const Word word_b = b.T[b.L - i];
        if (word_a != word_b) return word_a > word_b ? 1 : -1;
    }
    const auto non_zero = [](Word w) { return w != 0; };
    if (std::any_of(a.T, a.T + (a.L - common), non_zero)) return 1;
    if (std::any_of(b.T, b.T + (b.L - common), non_zero)) return -1;
    return 0;
}

// |a| - |b| with its true sign, that of a when |a| > |b|.
void set_signed_difference(BigFloat& destination, ParallelContext parallel, BigFloatView a, BigFloatView b,
                           std::uint64_t p) {
    const int order = ucmp(a, b);
    if (order == 0) {
        destination.set_zero();
        return;
    }
    const auto sign = static_cast<std::uint8_t>(order > 0 ? a.sign : !a.sign);
    if (order > 0) {
        destination.set_usub(parallel, a, b, p);
    } else {
        destination.set_usub(parallel, b, a, p);
    }
    // Truncation may have left nothing, and zero is positive.
    if (!destination.is_zero()) destination.sign = sign;
}

}  // namespace

int ucmp(BigFloatView a, BigFloatView b) {
    if (a.is_zero() || b.is_zero()) return static_cast<int>(!a.is_zero()) - static_cast<int>(!b.is_zero());
    if (a.top() != b.top()) return a.top() > b.top() ? 1 : -1;
    return compare_words(a, b);
}

void BigFloat::set_uadd(ParallelContext, BigFloatView a, BigFloatView b, std::uint64_t p) {
    if (a.is_zero()) return set_BigFloat(ParallelContext::sequential(), b, p);
    if (b.is_zero()) return set_BigFloat(ParallelContext::sequential(), a, p);

    const std::int64_t high = std::max(a.top(), b.top());
    const std::int64_t bottom = window_bottom(high, p, std::min(a.exp, b.exp));
    const auto length = static_cast<std::uint64_t>(high - bottom);
    require_capacity("BigFloat::set_uadd()", AL, length + 1);
    T = base;
    L = length;
    exp = bottom;
    sign = 1;
    const bool carry = combine_window(add_words<Word>, T, a, b, bottom, length);
    T[L] = carry ? 1 : 0;
    if (carry) ++L;
}

void BigFloat::set_usub(ParallelContext, BigFloatView a, BigFloatView b, std::uint64_t p) {
    if (b.is_zero()) return set_BigFloat(ParallelContext::sequential(), a, p);
    if (a.is_zero()) {
        // Not a magnitude that b can be taken from. Callers have always received a zero whose sign flag
        // is inverted.
        set_BigFloat(ParallelContext::sequential(), a, p);
        sign ^= 1;
        return;
    }
    const std::int64_t high = std::max(a.top(), b.top());
    const std::int64_t bottom = window_bottom(high, p, std::min(a.exp, b.exp));
    const auto length = static_cast<std::uint64_t>(high - bottom);
    require_capacity("BigFloat::set_usub()", AL, length);
    T = base;
    L = length;
    exp = bottom;
    sign = 1;
    combine_window(sub_words<Word>, T, a, b, bottom, length);
    strip_top_zeros(*this);
}

void BigFloat::set_add(ParallelContext parallel, BigFloatView a, BigFloatView b, std::uint64_t p) {
    if (a.sign != b.sign) return set_signed_difference(*this, parallel, a, b, p);
    set_uadd(parallel, a, b, p);
    sign = a.sign;
}

void BigFloat::set_sub(ParallelContext parallel, BigFloatView a, BigFloatView b, std::uint64_t p) {
    if (a.sign == b.sign) return set_signed_difference(*this, parallel, a, b, p);
    set_uadd(parallel, a, b, p);
    sign = a.sign;
}

void BigFloat::set_rsub(BigFloatView a, BigFloatView b, std::int64_t top_position, std::uint64_t p,
                        std::uint8_t result_sign) {
    const std::uint64_t length = p + 1;
    require_capacity("BigFloat::set_rsub()", AL, length);
    T = base;
    L = length;
    exp = top_position - static_cast<std::int64_t>(length);
    sign = result_sign;
    combine_window(sub_words<Word>, T, a, b, exp, length);
    strip_top_zeros(*this);
}

}  // namespace qmp
