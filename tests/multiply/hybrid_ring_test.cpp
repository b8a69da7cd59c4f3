// Arithmetic modulo 2^N + 1, against itself and the definition.
#include "multiply/hybrid_ntt/ring.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "support/random_words.h"
#include "support/words_reference.h"

namespace {

using kelvara_test::Pattern;
using kelvara_test::Random;
using qmp::Word;
using qmp::hybrid_ntt::Ring;
using Words = std::vector<Word>;

constexpr Word ones = ~Word{0};

// Residues at the ends and in between: 0, 1, 2, 2^N - 1, 2^N, and patterns.
std::vector<Words> residues(std::uint64_t n) {
    Random random(40 + n);
    std::vector<Words> all;
    for (Word small : {Word{0}, Word{1}, Word{2}, ones}) {
        all.emplace_back(n + 1, 0);
        all.back()[0] = small;
    }
    all.emplace_back(n + 1, ones);
    all.back()[n] = 0;
    all.emplace_back(n + 1, 0);
    all.back()[n] = 1;
    all.emplace_back(n + 1, 0);
    all.back()[n - 1] = Word{1} << 63;
    for (Pattern pattern : kelvara_test::all_patterns) {
        all.push_back(make_words(random, n, pattern));
        all.back().push_back(0);
    }
    return all;
}

Words garbage(std::uint64_t n) {
    Words words(n + 1);
    kelvara_test::fill_garbage(words.data(), n + 1);
    return words;
}

// x 2 modulo 2^N + 1, from the definition.
Words doubled(const Ring& ring, const Words& x) {
    Words sum = garbage(ring.words());
    ring.add(sum.data(), x.data(), x.data());
    return sum;
}

void expect_residue(const Words& x) {
    if (x.back() == 0) return;
    EXPECT_EQ(x.back(), 1u);
    for (std::size_t i = 0; i + 1 < x.size(); ++i) EXPECT_EQ(x[i], 0u);
}

TEST(HybridRing, AddAndSubAreInverse) {
    for (std::uint64_t n : {2, 4, 6, 30}) {
        const Ring ring(n);
        for (const Words& a : residues(n)) {
            for (const Words& b : residues(n)) {
                Words sum = garbage(n), back = garbage(n);
                ring.add(sum.data(), a.data(), b.data());
                expect_residue(sum);
                ring.sub(back.data(), sum.data(), b.data());
                expect_residue(back);
                ASSERT_EQ(back, a);
                Words in_place = a;
                ring.add(in_place.data(), in_place.data(), b.data());
                ASSERT_EQ(in_place, sum);
                in_place = b;
                ring.sub(in_place.data(), a.data(), in_place.data());
                ring.negate(in_place.data());
                expect_residue(in_place);
                ring.sub(back.data(), b.data(), a.data());
                ASSERT_EQ(in_place, back);
            }
        }
    }
}

TEST(HybridRing, KnownSums) {
    const Ring ring(2);
    const Words zero{0, 0, 0}, one{1, 0, 0}, minus_one{0, 0, 1}, minus_two{ones, ones, 0};
    Words result(3);
    ring.add(result.data(), minus_one.data(), minus_one.data());
    EXPECT_EQ(result, minus_two);
    ring.add(result.data(), minus_two.data(), one.data());
    EXPECT_EQ(result, minus_one);
    ring.sub(result.data(), zero.data(), one.data());
    EXPECT_EQ(result, minus_one);
    ring.add(result.data(), minus_one.data(), one.data());
    EXPECT_EQ(result, zero);
}

TEST(HybridRing, ShiftsAreRepeatedDoubling) {
    for (std::uint64_t n : {2, 4}) {
        const Ring ring(n);
        for (const Words& x : residues(n)) {
            Words expected = x;
            for (std::uint64_t shift = 0; shift < 2 * ring.bits(); ++shift) {
                Words result = garbage(n);
                ring.shift_left(result.data(), x.data(), shift);
                ASSERT_EQ(result, expected) << shift;
                expected = doubled(ring, expected);
            }
            ASSERT_EQ(expected, x);  // 2^(2N) = 1
        }
    }
}

TEST(HybridRing, RootsOfTwo) {
    for (std::uint64_t n : {2, 6}) {
        const Ring ring(n);
        for (const Words& x : residues(n)) {
            Words spare = garbage(n);
            for (std::uint64_t exponent = 0; exponent < 4 * ring.bits(); ++exponent) {
                // Twice the root's power is a power of 2.
                Words once = garbage(n), twice = garbage(n), shifted = garbage(n);
                ring.multiply_by_root(once.data(), x.data(), exponent, spare.data());
                expect_residue(once);
                ring.multiply_by_root(twice.data(), once.data(), exponent, spare.data());
                ring.shift_left(shifted.data(), x.data(), exponent % (2 * ring.bits()));
                ASSERT_EQ(twice, shifted) << exponent;
                if (exponent == 2 * ring.bits()) {
                    Words negative = x;
                    ring.negate(negative.data());
                    ASSERT_EQ(once, negative);
                }
            }
        }
    }
}

TEST(HybridRing, Products) {
    for (std::uint64_t n : {2, 8}) {
        const Ring ring(n);
        for (const Words& x : residues(n)) {
            if (x[n] != 0) continue;
            // x 2^s as a product.
            for (std::uint64_t shift = 0; shift < ring.bits(); shift += 7) {
                Words power(n, 0), result = garbage(n), expected = garbage(n);
                power[shift / 64] = Word{1} << shift % 64;
                const Words product = kelvara_test::reference_product(Words(x.begin(), x.end() - 1), power);
                ring.reduce(result.data(), product.data());
                ring.shift_left(expected.data(), x.data(), shift);
                ASSERT_EQ(result, expected);
            }
        }
    }
}

}  // namespace
