// The terms of every series in its own arithmetic, by GMP, for the tests of kernels and leaves.
#pragma once

#include <gmp.h>

#include <cstdint>
#include <initializer_list>
#include <vector>

#include "multiply/word.h"

namespace kelvara_test {

class Integer {
  public:
    Integer() { mpz_init(z); }
    explicit Integer(std::uint64_t value) { mpz_init_set_ui(z, value); }
    ~Integer() { mpz_clear(z); }
    Integer(const Integer& other) { mpz_init_set(z, other.z); }
    Integer& operator=(const Integer& other) {
        mpz_set(z, other.z);
        return *this;
    }

    Integer& operator*=(const Integer& other) {
        mpz_mul(z, z, other.z);
        return *this;
    }
    Integer& operator*=(std::uint64_t value) { return *this *= Integer(value); }
    // *this = *this * k + c.
    Integer& horner(std::uint64_t k, std::int64_t c) {
        mpz_mul_ui(z, z, k);
        if (c < 0) {
            mpz_sub_ui(z, z, static_cast<std::uint64_t>(-c));
        } else {
            mpz_add_ui(z, z, static_cast<std::uint64_t>(c));
        }
        return *this;
    }
    std::vector<qmp::Word> words() const {
        std::vector<qmp::Word> result(mpz_size(z));
        mpz_export(result.data(), nullptr, -1, sizeof(qmp::Word), 0, 0, z);
        return result;
    }

    mpz_t z;
};

inline Integer product_of(std::initializer_list<std::uint64_t> factors) {
    Integer product(1);
    for (const std::uint64_t factor : factors) product *= factor;
    return product;
}
inline Integer power_of(std::uint64_t base, unsigned exponent) {
    Integer power(base);
    mpz_pow_ui(power.z, power.z, exponent);
    return power;
}
inline Integer polynomial_at(std::uint64_t k, std::initializer_list<std::int64_t> coefficients) {
    Integer value(0);
    for (const std::int64_t c : coefficients) value.horner(k, c);
    return value;
}

// The products of one term.
struct TermIntegers {
    Integer P;
    Integer Q;
    Integer R;
};

inline TermIntegers arccoth_term(std::uint64_t x, std::uint64_t k) {
    return {Integer(1), product_of({x, x, 2 * k + 1}), Integer(2 * k + 1)};
}
inline TermIntegers zeta_long_term(std::uint64_t k) {
    TermIntegers t;
    t.R = power_of(k, 5) *= power_of(2 * k - 1, 3);
    t.P = polynomial_at(k, {126392, 412708, 531578, 336367, 104000, 12463}) *= t.R;
    t.Q = product_of({24, 3 * k + 1, 3 * k + 2}) *= power_of(4 * k + 1, 3);
    t.Q *= power_of(4 * k + 3, 3);
    return t;
}
inline TermIntegers zeta_short_term(std::uint64_t k) {
    TermIntegers t;
    t.R = power_of(k, 5);
    t.P = polynomial_at(k, {205, 250, 77}) *= t.R;
    t.Q = power_of(4 * k + 2, 5);
    return t;
}
inline TermIntegers lupas_term(std::uint64_t k) {
    TermIntegers t;
    t.R = product_of({16, k, k, k, 4 * k - 2});
    t.P = polynomial_at(k, {40, 56, 19}) *= t.R;
    t.Q = power_of(4 * k + 1, 2) *= power_of(4 * k + 3, 2);
    return t;
}
inline TermIntegers arc_sinlemn_term(std::uint64_t p, std::uint64_t q, std::uint64_t k) {
    TermIntegers t;
    t.R = power_of(p, 4) *= product_of({4 * k - 3, 2 * k - 1});
    t.P = t.R;
    t.Q = power_of(q, 4) *= product_of({4 * k + 1, 2 * k});
    return t;
}
// Without the power of two.
inline TermIntegers huvent_term(std::uint64_t k) {
    TermIntegers t;
    t.R = Integer(1);
    t.P = polynomial_at(k, {4636372233093120, 37721048963088384, 140614334152704000, 318025249742389248,
                            486920573914447872, 532937589964406784, 428868733241327616, 256653109156773888,
                            113872382317283328, 36670081182465024, 8098743309464448, 1029713994232704,
                            5572409156528, -24153149527360, -4419704161120, -360406957080, -11728430425});
    t.Q = Integer(1);
    for (const std::uint64_t factor : {2 * k + 1, 4 * k + 1, 4 * k + 3, 6 * k + 1, 6 * k + 5, 12 * k + 1,
                                       12 * k + 5, 12 * k + 7, 12 * k + 11}) {
        t.Q *= power_of(factor, 2);
    }
    return t;
}

}  // namespace kelvara_test
