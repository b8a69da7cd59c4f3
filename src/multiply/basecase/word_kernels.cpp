#include "multiply/basecase/word_kernels.h"

#include <type_traits>

#include "multiply/basecase/double_word.h"

namespace qmp {
namespace {

// Four words at a time with the carry in the processor's flag. The assembly sees registers only, so that
// the loads and stores stay visible to the compiler and to the sanitizers.
#define QMP_CARRY_CHAIN(INSTRUCTION)                                                                      \
    asm("addb $-1, %b[carry]\n\t" INSTRUCTION " %[b0], %[w0]\n\t" INSTRUCTION                             \
        " %[b1], %[w1]\n\t" INSTRUCTION " %[b2], %[w2]\n\t" INSTRUCTION " %[b3], %[w3]\n\tsetc %b[carry]" \
        : [w0] "+&r"(w0), [w1] "+&r"(w1), [w2] "+&r"(w2), [w3] "+&r"(w3), [carry] "+&q"(carry)            \
        : [b0] "r"(b[0]), [b1] "r"(b[1]), [b2] "r"(b[2]), [b3] "r"(b[3])                                  \
        : "cc")

struct AddCarry {
    template <typename W>
    static void one(W& destination, W a, W b, unsigned char& carry) {
        const auto sum = static_cast<DoubleOf<W>>(a) + b + carry;
        destination = static_cast<W>(sum);
        carry = static_cast<unsigned char>(sum >> WordTraits<W>::bits);
    }
    static void four(std::uint64_t* destination, const std::uint64_t* a, const std::uint64_t* b,
                     unsigned char& carry) {
        std::uint64_t w0 = a[0], w1 = a[1], w2 = a[2], w3 = a[3];
        QMP_CARRY_CHAIN("adcq");
        destination[0] = w0, destination[1] = w1, destination[2] = w2, destination[3] = w3;
    }
};

struct SubtractBorrow {
    template <typename W>
    static void one(W& destination, W a, W b, unsigned char& carry) {
        const auto difference = static_cast<DoubleOf<W>>(a) - b - carry;
        destination = static_cast<W>(difference);
        carry = static_cast<unsigned char>((difference >> WordTraits<W>::bits) & 1);
    }
    static void four(std::uint64_t* destination, const std::uint64_t* a, const std::uint64_t* b,
                     unsigned char& carry) {
        std::uint64_t w0 = a[0], w1 = a[1], w2 = a[2], w3 = a[3];
        QMP_CARRY_CHAIN("sbbq");
        destination[0] = w0, destination[1] = w1, destination[2] = w2, destination[3] = w3;
    }
};

#undef QMP_CARRY_CHAIN

template <typename Operation, typename W>
bool combine(W* destination, const W* a, const W* b, std::uint64_t n, bool carry_in) {
    unsigned char carry = carry_in;
    std::uint64_t i = 0;
    for (; i + 4 <= n; i += 4) {
        if constexpr (std::is_same_v<W, std::uint64_t>) {
            Operation::four(destination + i, a + i, b + i, carry);
        } else {
            for (std::uint64_t j = i; j < i + 4; ++j) Operation::one(destination[j], a[j], b[j], carry);
        }
    }
    for (; i < n; ++i) Operation::one(destination[i], a[i], b[i], carry);
    return carry != 0;
}

}  // namespace

template <typename W>
bool add_words(W* destination, const W* a, const W* b, std::uint64_t n) {
    return combine<AddCarry>(destination, a, b, n, false);
}

template <typename W>
bool sub_words(W* destination, const W* a, const W* b, std::uint64_t n) {
    return combine<SubtractBorrow>(destination, a, b, n, false);
}

template <typename W>
bool add_words(W* destination, const W* a, const W* b, std::uint64_t n, bool carry) {
    return combine<AddCarry>(destination, a, b, n, carry);
}

template <typename W>
bool sub_words(W* destination, const W* a, const W* b, std::uint64_t n, bool borrow) {
    return combine<SubtractBorrow>(destination, a, b, n, borrow);
}

template <typename W>
bool add_carry(W* words, std::uint64_t n, bool carry) {
    for (std::uint64_t i = 0; carry && i < n; ++i) carry = ++words[i] == 0;
    return carry;
}

template <typename W>
bool sub_borrow(W* words, std::uint64_t n, bool borrow) {
    for (std::uint64_t i = 0; borrow && i < n; ++i) borrow = words[i]-- == 0;
    return borrow;
}

template <typename W>
int add_signed_carry(W* words, std::uint64_t n, int carry) {
    if (n == 0 || carry == 0) return carry;
    if (carry > 0) {
        words[0] += static_cast<W>(carry);
        return add_carry(words + 1, n - 1, words[0] < static_cast<W>(carry));
    }
    const W borrow = static_cast<W>(-static_cast<std::int64_t>(carry));
    const bool below_zero = words[0] < borrow;
    words[0] -= borrow;
    return -static_cast<int>(sub_borrow(words + 1, n - 1, below_zero));
}

template <typename W>
W mul_word(W* destination, const W* a, std::uint64_t n, std::type_identity_t<W> w,
           std::type_identity_t<W> carry) {
#pragma GCC unroll 4
    for (std::uint64_t i = 0; i < n; ++i) {
        const auto product = static_cast<DoubleOf<W>>(a[i]) * w + carry;
        destination[i] = static_cast<W>(product);
        carry = static_cast<W>(product >> WordTraits<W>::bits);
    }
    return carry;
}

template <typename W>
W mul_add_word(W* destination, const W* a, std::uint64_t n, std::type_identity_t<W> w) {
    W carry = 0;
#pragma GCC unroll 4
    for (std::uint64_t i = 0; i < n; ++i) {
        const auto product = static_cast<DoubleOf<W>>(a[i]) * w + carry + destination[i];
        destination[i] = static_cast<W>(product);
        carry = static_cast<W>(product >> WordTraits<W>::bits);
    }
    return carry;
}

QMP_WORD_KERNELS(, std::uint64_t);
QMP_WORD_KERNELS(, std::uint32_t);

}  // namespace qmp
