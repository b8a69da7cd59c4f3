// Single squarings at the edges of what a residue may be, against integers of 128 bits.
#include "constants/bbp/kernels/residues.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

#include "multiply/vectors/vector_scalar.h"
#include "support/random_words.h"

namespace {

using kelvara_test::Random;
__extension__ using Wide = __int128;

// The fused operations of the wide levels, on any machine. (The C library's need not be exact: that of MinGW
// is not.) A product of doubles fits 113 bits, and so do the sums in question.
struct VectorFusedReference : VectorScalar {
    static double fused(double a, double b, double c) {
        __extension__ using Quad = __float128;
        return static_cast<double>(Quad{a} * Quad{b} + Quad{c});
    }
    static Real mul_add(Real a, Real b, Real c) {
        return {fused(a.low, b.low, c.low), fused(a.high, b.high, c.high)};
    }
    static Real mul_sub(Real a, Real b, Real c) {
        return {fused(a.low, b.low, -c.low), fused(a.high, b.high, -c.high)};
    }
    static Real neg_mul_add(Real a, Real b, Real c) {
        return {fused(-a.low, b.low, c.low), fused(-a.high, b.high, c.high)};
    }
};

std::int64_t residue_of(Wide x, std::int64_t modulus) {
    const auto r = static_cast<std::int64_t>(x % modulus);
    return r < 0 ? r + modulus : r;
}

template <typename V>
class BbpResidues : public testing::Test {
  protected:
    // value^2 * 2^scale: the residue is right and at most `bound` moduli.
    template <int Width>
    static void expect_square(std::int64_t modulus, std::int64_t value, std::uint64_t scale, double bound) {
        Residues<V, 1> residues;
        residues.modulus[0] = V::set(static_cast<double>(modulus));
        residues.inverse[0] = V::set(1 / static_cast<double>(modulus));
        residues.value[0] = V::set(static_cast<double>(value));
        // Other bits must not matter.
        const typename V::Bits exponents[1] = {V::set_bits((scale | 0x140) << 52 | 0x123456789abcd)};
        residues.template square<Width>(exponents);
        double result[2];
        V::store(result, residues.value[0]);
        ASSERT_EQ(result[0], std::nearbyint(result[0]));
        ASSERT_EQ(residue_of(static_cast<Wide>(result[0]), modulus),
                  residue_of((Wide{value} * value % modulus) << scale, modulus))
            << value << " mod " << modulus << " * 2^" << scale;
        ASSERT_LE(std::fabs(result[0]), bound * static_cast<double>(modulus))
            << value << " mod " << modulus << " * 2^" << scale;
    }

    // At most `most` moduli: often that, or one half, or near 0.
    static std::int64_t value(Random& random, std::int64_t modulus, double most) {
        const double size = static_cast<double>(modulus);
        const std::int64_t near = static_cast<std::int64_t>(random.between(0, 40));
        const std::int64_t values[] = {
            static_cast<std::int64_t>(most * size) - near, modulus / 2 - near, near,
            static_cast<std::int64_t>(most * size * 0x1p-32 * static_cast<double>(random.next() >> 32))};
        const std::int64_t chosen = values[random.next() % 4];
        return random.next() % 2 == 0 ? chosen : -chosen;
    }
    static std::int64_t modulus(Random& random) {
        constexpr std::int64_t limit = std::int64_t{1} << 49;
        const std::uint64_t kind = random.next() % 4;
        if (kind == 0) return limit - 1 - 2 * static_cast<std::int64_t>(random.between(0, 100));
        return static_cast<std::int64_t>(random.next() >> (15 + (kind == 1 ? 0 : random.next() % 30))) | 64 |
               1;
    }
};
using VectorTypes = testing::Types<VectorFusedReference, Fused<VectorScalar>>;
TYPED_TEST_SUITE(BbpResidues, VectorTypes);

TYPED_TEST(BbpResidues, SquaresAreExactAndStaySmall) {
    constexpr bool fused = MultiplyAdd<TypeParam>::window == 2;
    Random random(1);
    for (std::uint64_t i = 0; i < 20000 * kelvara_test::multiplier(); ++i) {
        const std::int64_t modulus = this->modulus(random);
        if (fused) {
            const std::int64_t any = this->value(random, modulus, 0.85);
            this->template expect_square<0>(modulus, any, 0, 0.591);
            this->template expect_square<1>(modulus, this->value(random, modulus, 0.625), random.next() % 2,
                                            0.6);
            this->template expect_square<2>(modulus, this->value(random, modulus, 0.591), random.next() % 4,
                                            0.85);
        } else {
            this->template expect_square<1>(modulus, this->value(random, modulus, 0.67), random.next() % 2,
                                            0.67);
        }
    }
}

}  // namespace
