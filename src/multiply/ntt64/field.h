// Scalar arithmetic modulo one of the primes, for constants. Elements are kept times 2^64.
#pragma once

#include <cstdint>

#include "multiply/ntt64/kernels/kernels.h"
#include "multiply/word.h"

namespace qmp::ntt64 {

class Field {
  public:
    explicit Field(std::uint64_t prime) : p_(prime), inverse_(prime), one_((0 - prime) % prime) {
        for (int i = 0; i < 5; ++i) inverse_ *= 2 - prime * inverse_;  // starts right modulo 8
        square_ = low_word(static_cast<DoubleWord>(one_) * one_ % prime);
    }

    std::uint64_t prime() const { return p_; }
    std::uint64_t inverse_modulo_word() const { return inverse_; }
    std::uint64_t one() const { return one_; }
    std::uint64_t element(std::uint64_t value) const { return mul(value % p_, square_); }
    std::uint64_t value(std::uint64_t element) const { return mul(element, 1); }

    std::uint64_t add(std::uint64_t a, std::uint64_t b) const { return a + b >= p_ ? a + b - p_ : a + b; }
    std::uint64_t negative(std::uint64_t a) const { return a == 0 ? 0 : p_ - a; }
    // The product of two elements.
    std::uint64_t mul(std::uint64_t a, std::uint64_t b) const {
        const DoubleWord product = static_cast<DoubleWord>(a) * b;
        const Word m = low_word(product) * inverse_;
        const Word high = high_word(product), cut = high_word(static_cast<DoubleWord>(m) * p_);
        return high < cut ? high - cut + p_ : high - cut;
    }
    std::uint64_t power(std::uint64_t a, std::uint64_t exponent) const {
        std::uint64_t result = one_;
        for (; exponent != 0; exponent >>= 1) {
            if (exponent & 1) result = mul(result, a);
            a = mul(a, a);
        }
        return result;
    }
    std::uint64_t invert(std::uint64_t a) const { return power(a, p_ - 2); }

    // The element as a constant factor. Its quotient needs no division: 2^64 c less its residue, which is
    // the element, is the quotient times p exactly.
    Twiddle twiddle(std::uint64_t element) const { return {value(element), (0 - element) * inverse_}; }

  private:
    std::uint64_t p_;
    std::uint64_t inverse_;
    std::uint64_t one_;     // 2^64
    std::uint64_t square_;  // 2^128
};

}  // namespace qmp::ntt64
