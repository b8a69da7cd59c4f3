// Operands that are hard for the Newton iterations, and what their results must satisfy: by multiplying back,
// and against integer division.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "numbers/big_float.h"
#include "numbers/number_buffers.h"
#include "numbers/reference_integer.h"

#ifdef KELVARA_HAVE_GMP
#include <gmp.h>
#endif

namespace kelvara_test {
// Of word position top - p.
constexpr std::uint64_t allowed_units = 2;

inline Words absolute_difference(const Words& a, const Words& b) {
    return compare(a, b) >= 0 ? difference(a, b) : difference(b, a);
}

inline Words long_product(const Words& a, const Words& b) {
#ifdef KELVARA_HAVE_GMP
    if (a.empty() || b.empty()) return {};
    Words result(a.size() + b.size());
    const bool a_longer = a.size() >= b.size();
    mpn_mul(result.data(), a_longer ? a.data() : b.data(),
            static_cast<mp_size_t>(std::max(a.size(), b.size())), a_longer ? b.data() : a.data(),
            static_cast<mp_size_t>(std::min(a.size(), b.size())));
    trim(result);
    return result;
#else
    return product(a, b);
#endif
}

// words * R^position / R^bottom.
inline Words at_position(const Words& words, std::int64_t position, std::int64_t bottom) {
    return shifted(words, static_cast<std::uint64_t>(position - bottom));
}

inline Words words_from(qmp::BigFloatView x) {
    return {x.T, x.T + x.L};
}

// Numbers whose reciprocals are awkward: powers of the radix and their neighbours, words of all ones, runs,
// leading words that are as small or as large as they can be.
inline std::vector<Words> hard_operands(Random& random, std::uint64_t length) {
    std::vector<Words> operands;
    for (Pattern pattern : all_patterns) operands.push_back(make_words(random, length, pattern));
    Words power(length, 0);
    power.back() = 1;
    operands.push_back(power);
    power.front() += 1;  // just above a power of the radix
    operands.push_back(power);
    power.front() = length > 1 ? random.next() | 1 : 3;
    operands.push_back(power);
    Words below(length, all_ones);  // just below one
    below.front() = all_ones - 1;
    operands.push_back(below);
    if (length >= 2) {
        below.front() = 0;
        operands.push_back(below);
        Words hole(length, all_ones);
        hole[length - 2] = 0;
        operands.push_back(hole);
    }
    for (qmp::Word top : {qmp::Word{1}, qmp::Word{1} << 63, (qmp::Word{1} << 63) + 1, all_ones}) {
        Words words = make_words(random, length);
        words.back() = top;
        operands.push_back(words);
    }
    return operands;
}

// Lengths around a precision of p words.
inline std::vector<std::uint64_t> lengths_around(std::uint64_t p) {
    std::vector<std::uint64_t> lengths;
    for (std::uint64_t n : {std::uint64_t{1}, std::uint64_t{2}, (p + 1) / 2 - 1, p / 2 + 2, p, p + 1, p + 2,
                            p + 3, 2 * p + 5}) {
        if (n > 0 && std::find(lengths.begin(), lengths.end(), n) == lengths.end()) lengths.push_back(n);
    }
    return lengths;
}

// |q - a/b| is at most two units of word position top(q) - p: the quotient's first p words are right.
inline void expect_quotient(qmp::BigFloatView q, qmp::BigFloatView a, qmp::BigFloatView b, std::uint64_t p) {
    ASSERT_FALSE(q.is_zero());
    EXPECT_NE(q.T[q.L - 1], 0u);
    EXPECT_LE(q.L, p + 3);
    EXPECT_EQ(q.sign, a.sign == b.sign ? 1 : 0);
    // |q b - a| <= 2 b R^unit, everything in units of R^bottom.
    const std::int64_t unit = q.top() - static_cast<std::int64_t>(p);
    const std::int64_t bottom = std::min({q.exp + b.exp, a.exp, unit + b.exp});
    const Words product = at_position(long_product(words_from(q), words_from(b)), q.exp + b.exp, bottom);
    const Words error = absolute_difference(product, at_position(words_from(a), a.exp, bottom));
    const Words allowed = at_position(long_product(words_from(b), {allowed_units}), unit + b.exp, bottom);
    EXPECT_LE(compare(error, allowed), 0) << "p = " << p << ", lengths " << a.L << " and " << b.L;

#ifdef KELVARA_HAVE_GMP
    // The integer quotient in units of R^(unit - 1).
    mpz_t numerator, divisor, quotient;
    mpz_inits(numerator, divisor, quotient, nullptr);
    const Words divided = words_from(a);
    mpz_import(numerator, divided.size(), -1, 8, 0, 0, divided.data());
    mpz_import(divisor, b.L, -1, 8, 0, 0, b.T);
    const std::int64_t shift = a.exp - b.exp - (unit - 1);
    if (shift >= 0) {
        mpz_mul_2exp(numerator, numerator, static_cast<mp_bitcnt_t>(64 * shift));
    } else {
        mpz_mul_2exp(divisor, divisor, static_cast<mp_bitcnt_t>(-64 * shift));
    }
    mpz_tdiv_q(quotient, numerator, divisor);
    Words exact(mpz_size(quotient));
    mpz_export(exact.data(), nullptr, -1, 8, 0, 0, quotient);
    mpz_clears(numerator, divisor, quotient, nullptr);
    EXPECT_LE(compare(absolute_difference(magnitude_from(q, unit - 1), exact), {1, allowed_units}), 0);
#endif
}

// The same for r and 1/sqrt(w).
inline void expect_inverse_root(qmp::BigFloatView r, qmp::Word w, std::uint64_t p) {
    ASSERT_FALSE(r.is_zero());
    EXPECT_NE(r.T[r.L - 1], 0u);
    EXPECT_LE(r.L, p + 3);
    EXPECT_EQ(r.sign, 1);
    // With r off by d, w r^2 is off from 1 by 2 w r d and a square too small to count.
    const std::int64_t unit = r.top() - static_cast<std::int64_t>(p);
    const Words words = words_from(r);
    const std::int64_t bottom = std::min<std::int64_t>({2 * r.exp, 0, unit + r.exp});
    const Words square = at_position(long_product(long_product(words, words), {w}), 2 * r.exp, bottom);
    const Words error = absolute_difference(square, at_position({1}, 0, bottom));
    const Words scale = long_product(long_product(words, {w}), {2 * allowed_units + 1});
    EXPECT_LE(compare(error, at_position(scale, unit + r.exp, bottom)), 0) << "p = " << p << ", w = " << w;

#ifdef KELVARA_HAVE_GMP
    // floor(sqrt(R^(2k) / w)), in units of R^-k.
    const std::uint64_t k = p + 4;
    mpz_t root;
    mpz_init_set_ui(root, 1);
    mpz_mul_2exp(root, root, 128 * k);
    mpz_tdiv_q_ui(root, root, w);
    mpz_sqrt(root, root);
    Words exact(mpz_size(root));
    mpz_export(exact.data(), nullptr, -1, 8, 0, 0, root);
    mpz_clear(root);
    const Words got = magnitude_from(r, -static_cast<std::int64_t>(k));
    const Words limit = at_position({allowed_units}, unit, -static_cast<std::int64_t>(k));
    EXPECT_LE(compare(absolute_difference(got, exact), sum(limit, {2})), 0) << "p = " << p << ", w = " << w;
#endif
}

}  // namespace kelvara_test
