#include "multiply/basecase/schoolbook.h"

#include <type_traits>
#include <utility>

#include "multiply/basecase/double_word.h"
#include "multiply/basecase/schoolbook_kernels.h"
#include "multiply/basecase/word_kernels.h"
#include "platform/processor_features.h"

namespace qmp {
namespace {

// One row of a pass: x times four words of B, added to the running column c0..c3 and to `above`, the word
// that leaves the column at its bottom. Gives that word and takes the new top of the column into c0,
// which the caller's next row uses as its c3.
//
// Nothing overflows: x * B <= (2^w - 1)(2^4w - 1), and with a full column and a full word added it is
// 2^5w - 1 at most.
template <typename W>
inline W add_row(W above, W x, const W (&b)[4], W& c0, W& c1, W& c2, W& c3) {
    using Double = DoubleOf<W>;
    constexpr auto bits = WordTraits<W>::bits;
    Double t = static_cast<Double>(x) * b[0] + c0 + above;
    const W bottom = static_cast<W>(t);
    t = static_cast<Double>(x) * b[1] + c1 + static_cast<W>(t >> bits);
    c1 = static_cast<W>(t);
    t = static_cast<Double>(x) * b[2] + c2 + static_cast<W>(t >> bits);
    c2 = static_cast<W>(t);
    t = static_cast<Double>(x) * b[3] + c3 + static_cast<W>(t >> bits);
    c3 = static_cast<W>(t);
    c0 = static_cast<W>(t >> bits);
    return bottom;
}

// The compiler moves every product through two more registers and adds each of its halves in two steps
// of a longer chain: written out, a row takes three quarters of the time.
#define QMP_ROW_STEP(b, c)          \
    "movq %[x], %%rax\n\tmulq %[" b \
    "]\n\t"                         \
    "addq %%rax, %[" c              \
    "]\n\tadcq $0, %%rdx\n\t"       \
    "addq %[carry], %[" c           \
    "]\n\tadcq $0, %%rdx\n\t"       \
    "movq %%rdx, %[carry]\n\t"

template <>
inline std::uint64_t add_row(std::uint64_t above, std::uint64_t x, const std::uint64_t (&b)[4],
                             std::uint64_t& c0, std::uint64_t& c1, std::uint64_t& c2, std::uint64_t& c3) {
    std::uint64_t bottom = c0;
    std::uint64_t carry = above;
    asm(QMP_ROW_STEP("b0", "c0") QMP_ROW_STEP("b1", "c1") QMP_ROW_STEP("b2", "c2") QMP_ROW_STEP("b3", "c3")
        : [c0] "+&r"(bottom), [c1] "+&r"(c1), [c2] "+&r"(c2), [c3] "+&r"(c3), [carry] "+&r"(carry)
        : [x] "rm"(x), [b0] "rm"(b[0]), [b1] "rm"(b[1]), [b2] "rm"(b[2]), [b3] "rm"(b[3])
        : "rax", "rdx", "cc");
    c0 = carry;
    return bottom;
}

#undef QMP_ROW_STEP

// One pass: A by four words of B. With `accumulate` the n words at the destination are added, otherwise
// they are only written; the four words above them are written in both cases.
template <bool accumulate, typename W>
void multiply_four(W* destination, const W* A, std::uint64_t n, const W* B) {
    const W b[4] = {B[0], B[1], B[2], B[3]};
    W c0 = 0, c1 = 0, c2 = 0, c3 = 0;
    const auto row = [&](std::uint64_t i, W& r0, W& r1, W& r2, W& r3) {
        destination[i] = add_row<W>(accumulate ? destination[i] : W{0}, A[i], b, r0, r1, r2, r3);
    };
    std::uint64_t i = 0;
    for (; i + 4 <= n; i += 4) {
        // The column moves up a word per row: the names move instead of the words.
        row(i, c0, c1, c2, c3);
        row(i + 1, c1, c2, c3, c0);
        row(i + 2, c2, c3, c0, c1);
        row(i + 3, c3, c0, c1, c2);
    }
    for (; i < n; ++i) {
        row(i, c0, c1, c2, c3);
        const W top = c0;
        c0 = c1, c1 = c2, c2 = c3, c3 = top;
    }
    destination[n] = c0;
    destination[n + 1] = c1;
    destination[n + 2] = c2;
    destination[n + 3] = c3;
}

template <typename W>
void multiply_plain(W* destination, const W* A, std::uint64_t LA, const W* B, std::uint64_t LB) {
    if (LA < LB) {
        std::swap(A, B);
        std::swap(LA, LB);
    }
    std::uint64_t j = 0;
    if (LB >= 4) {
        multiply_four<false>(destination, A, LA, B);
        for (j = 4; j + 4 <= LB; j += 4) multiply_four<true>(destination + j, A, LA, B + j);
    } else {
        destination[LA] = mul_word(destination, A, LA, B[0]);
        j = 1;
    }
    for (; j < LB; ++j) destination[LA + j] = mul_add_word(destination + j, A, LA, B[j]);
}

// The off-diagonal products once, row by row, then their double plus the squares of the words.
void square_plain(std::uint64_t* destination, const std::uint64_t* A, std::uint64_t n) {
    if (n < 4) return multiply_plain(destination, A, n, A, n);
    destination[n] = mul_word(destination + 1, A + 1, n - 1, A[0]);
    for (std::uint64_t i = 1; i + 1 < n; ++i) {
        destination[n + i] = mul_add_word(destination + 2 * i + 1, A + i + 1, n - 1 - i, A[i]);
    }
    destination[0] = 0;
    destination[2 * n - 1] = 0;
    std::uint64_t carry = 0;
    std::uint64_t above = 0;  // the bit that doubling moves up
    for (std::uint64_t i = 0; i < n; ++i) {
        const DoubleWord square = static_cast<DoubleWord>(A[i]) * A[i];
        const std::uint64_t s0 = destination[2 * i], s1 = destination[2 * i + 1];
        DoubleWord t =
            static_cast<DoubleWord>((s0 << 1) | above) + static_cast<std::uint64_t>(square) + carry;
        destination[2 * i] = static_cast<std::uint64_t>(t);
        t = static_cast<DoubleWord>((s1 << 1) | (s0 >> 63)) + static_cast<std::uint64_t>(square >> 64) +
            static_cast<std::uint64_t>(t >> 64);
        destination[2 * i + 1] = static_cast<std::uint64_t>(t);
        carry = static_cast<std::uint64_t>(t >> 64);
        above = s1 >> 63;
    }
}

}  // namespace

constexpr SchoolbookKernels schoolbook_plain = {multiply_plain<std::uint64_t>, square_plain};

bool schoolbook_adx_supported() {
    return processor_features().bmi2 && processor_features().adx;
}

namespace {

// Plain for whoever multiplies before this file's statics are initialised; both give the same words.
SchoolbookKernels chosen = schoolbook_plain;
[[maybe_unused]] const bool choice_is_made =
    (chosen = schoolbook_adx_supported() ? schoolbook_adx : schoolbook_plain, true);

}  // namespace

template <typename W>
void mulB(W* destination, const W* A, std::uint64_t LA, const W* B, std::uint64_t LB) {
    if constexpr (std::is_same_v<W, std::uint64_t>) {
        if (A == B && LA == LB) return chosen.square(destination, A, LA);
        chosen.multiply(destination, A, LA, B, LB);
    } else {
        multiply_plain(destination, A, LA, B, LB);
    }
}

template <typename W>
void sqrB(W* destination, const W* A, std::uint64_t n) {
    if constexpr (std::is_same_v<W, std::uint64_t>) {
        chosen.square(destination, A, n);
    } else {
        multiply_plain(destination, A, n, A, n);
    }
}

template void mulB(std::uint64_t*, const std::uint64_t*, std::uint64_t, const std::uint64_t*, std::uint64_t);
template void mulB(std::uint32_t*, const std::uint32_t*, std::uint64_t, const std::uint32_t*, std::uint64_t);
template void sqrB(std::uint64_t*, const std::uint64_t*, std::uint64_t);
template void sqrB(std::uint32_t*, const std::uint32_t*, std::uint64_t);

}  // namespace qmp
