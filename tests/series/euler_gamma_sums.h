// The sums of the Brent-McMillan method by their definitions, with GMP.
#pragma once

#ifdef KELVARA_HAVE_GMP

#include <gmp.h>

#include <array>
#include <cstdint>

#include "numbers/exact_float.h"

namespace kelvara_test {

// An integer of GMP's.
class Integer {
  public:
    Integer(unsigned long value = 0) { mpz_init_set_ui(z_, value); }
    Integer(const Integer& other) { mpz_init_set(z_, other.z_); }
    Integer& operator=(const Integer& other) {
        mpz_set(z_, other.z_);
        return *this;
    }
    ~Integer() { mpz_clear(z_); }

    Integer operator*(const Integer& b) const {
        Integer result;
        mpz_mul(result.z_, z_, b.z_);
        return result;
    }
    Integer operator+(const Integer& b) const {
        Integer result;
        mpz_add(result.z_, z_, b.z_);
        return result;
    }
    Integer operator/(const Integer& b) const {
        Integer result;
        mpz_divexact(result.z_, z_, b.z_);
        return result;
    }
    Integer operator<<(std::uint64_t bits) const {
        Integer result;
        mpz_mul_2exp(result.z_, z_, bits);
        return result;
    }
    bool operator==(const Integer& b) const { return mpz_cmp(z_, b.z_) == 0; }
    mpz_ptr get() { return z_; }

  private:
    mpz_t z_;
};

// A number times 2^(64 scale), an integer.
inline Integer integer_of(qmp::ExactFloatView x, std::int64_t scale) {
    Integer result;
    mpz_import(result.get(), x.L, -1, sizeof(qmp::Word), 0, 0, x.T);
    return result << static_cast<std::uint64_t>(64 * (x.exp + scale));
}

// P, Q, R and S over (a, b], times 2^(64 scale), by the sums that define them.
inline std::array<Integer, 4> euler_gamma_sums(std::int32_t exponent, std::uint64_t a, std::uint64_t b,
                                               std::int64_t scale) {
    Integer Q = 1;
    for (std::uint64_t k = a + 1; k <= b; k++) Q = Q * k;
    Integer P = 0;  // Q (H_b - H_k), as k falls
    Integer R = 0;
    Integer S = 0;
    Integer behind = 1;  // (k + 1) ... b
    for (std::uint64_t k = b; k > a; k--) {
        const auto bits =
            static_cast<std::uint64_t>(2 * exponent * static_cast<std::int64_t>(k) + 64 * scale);
        const Integer square = behind * behind << bits;
        R = R + square;
        S = S + square + square * P / Q;
        P = P + Q / k;
        behind = behind * k;
    }
    const auto scale_bits = static_cast<std::uint64_t>(64 * scale);
    return {P << scale_bits, Q << scale_bits, R, S};
}

}  // namespace kelvara_test

#endif
