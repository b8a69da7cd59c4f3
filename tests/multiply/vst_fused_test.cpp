// The multiply-add without fused instructions, against std::fma and integers, on the operand patterns that
// the vector transform uses.
#include "multiply/vst/kernels/fused.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

#include "multiply/vectors/vector_scalar.h"
#include "multiply/vectors/vector_sse2.h"
#include "multiply/vst/prime_table.h"
#include "support/random_words.h"

namespace {

using kelvara_test::Random;

template <typename V>
class VstFused : public testing::Test {
  protected:
    static typename V::Real pair(double low, double high) {
        const double values[2] = {low, high};
        return V::load(values);
    }
    static double lane(typename V::Real x, int i) {
        double values[2];
        V::store(values, x);
        return values[i];
    }
};
using VectorTypes = testing::Types<VectorScalar, VectorSse2>;
TYPED_TEST_SUITE(VstFused, VectorTypes);

// An integer of at most `bits` bits, either sign, often at the edge.
double integer(Random& random, unsigned bits) {
    const std::uint64_t top = std::uint64_t{1} << bits;
    const std::uint64_t kind = random.next() % 8;
    const std::uint64_t size = kind == 0   ? top
                               : kind == 1 ? top - 1
                               : kind == 2 ? random.next() % 4
                                           : random.next() & (top - 1);
    return random.next() % 2 == 0 ? static_cast<double>(size) : -static_cast<double>(size);
}

TYPED_TEST(VstFused, ErrorOfAProductIsExact) {
    using F = Fused<TypeParam>;
    Random random(1);
    for (std::uint64_t i = 0; i < 20000 * kelvara_test::multiplier(); ++i) {
        const double x[2] = {integer(random, 52), integer(random, 50)};
        const double w[2] = {integer(random, 49), integer(random, 52)};
        const auto vx = this->pair(x[0], x[1]);
        const auto vw = this->pair(w[0], w[1]);
        const auto product = F::mul(vx, vw);
        const auto error = F::mul_sub(vx, vw, product);
        const auto negative = F::neg_mul_add(vx, vw, product);
        for (int l = 0; l < 2; ++l) {
            ASSERT_EQ(this->lane(error, l), std::fma(x[l], w[l], -(x[l] * w[l]))) << x[l] << " " << w[l];
            ASSERT_EQ(this->lane(negative, l), std::fma(-x[l], w[l], x[l] * w[l])) << x[l] << " " << w[l];
        }
    }
}

// h - q p with q the rounded quotient, and with q beside it.
TYPED_TEST(VstFused, RemaindersAreExact) {
    using F = Fused<TypeParam>;
    Random random(2);
    for (std::uint64_t i = 0; i < 20000 * kelvara_test::multiplier(); ++i) {
        const auto& row = qmp::vst::prime_table[random.next() % qmp::vst::multiplier_count];
        const double p = static_cast<double>(row[random.next() % qmp::vst::most_primes].value);
        double h[2], q[2];
        for (int l = 0; l < 2; ++l) {
            h[l] = integer(random, 52) * integer(random, 49);
            q[l] = std::nearbyint(h[l] * (1 / p)) + static_cast<double>(random.next() % 5) - 2;
        }
        const auto prime = F::set(p);
        const auto vh = this->pair(h[0], h[1]);
        const auto vq = this->pair(q[0], q[1]);
        const auto remainder = F::neg_mul_add(vq, prime, vh);
        const auto opposite = F::mul_sub(vq, prime, vh);
        for (int l = 0; l < 2; ++l) {
            ASSERT_EQ(this->lane(remainder, l), std::fma(-q[l], p, h[l])) << h[l] << " " << q[l];
            ASSERT_EQ(this->lane(opposite, l), std::fma(q[l], p, -h[l])) << h[l] << " " << q[l];
        }
    }
}

// high + low of a sum of products is the exact integer, the high part in steps of the magic number's unit.
TYPED_TEST(VstFused, ChainedSumsAreExact) {
    using F = Fused<TypeParam>;
    Random random(3);
    const double magic = 0x1.8p101;
    const double unit = 0x1p49;
    for (std::uint64_t i = 0; i < 4000 * kelvara_test::multiplier(); ++i) {
        __int128 expected[2] = {0, 0};
        auto sum = F::set(magic);
        auto low = F::set(0);
        for (int term = 0; term < 9; ++term) {
            const double t[2] = {integer(random, 49), integer(random, 49)};
            const double w[2] = {integer(random, 47), integer(random, 47)};
            const auto vt = this->pair(t[0], t[1]);
            const auto vw = this->pair(w[0], w[1]);
            const auto next = F::mul_add(vt, vw, sum);
            low = F::add(low, F::mul_sub(vt, vw, F::sub(next, sum)));
            sum = next;
            for (int l = 0; l < 2; ++l) {
                expected[l] += static_cast<__int128>(t[l]) * static_cast<std::int64_t>(w[l]);
            }
        }
        for (int l = 0; l < 2; ++l) {
            const double high = this->lane(sum, l) - magic;
            ASSERT_EQ(std::fmod(high, unit), 0);
            const __int128 result = static_cast<__int128>(high) + static_cast<__int128>(this->lane(low, l));
            ASSERT_TRUE(result == expected[l]);
            ASSERT_LE(std::abs(this->lane(low, l)), 9 * 0.52 * unit);
        }
    }
}

TYPED_TEST(VstFused, RoundsToNearestEven) {
    using F = Fused<TypeParam>;
    const double cases[] = {0.0,         0.5,           1.5,          2.5,          0.49999999999999994,
                            0x1p50 + .5, 0x1p51 + 0.5,  0x1p51 + 1.5, 0x1p52 - 0.5, 0x1p52 - 1,
                            0x1p52,      0x1p51 - 0.25, 3.75,         1e15 + 0.5,   12345.499999};
    for (const double x : cases) {
        const auto rounded = F::round(this->pair(x, -x));
        EXPECT_EQ(this->lane(rounded, 0), std::nearbyint(x)) << x;
        EXPECT_EQ(this->lane(rounded, 1), std::nearbyint(-x)) << x;
    }
}

}  // namespace
