// Schoolbook and Karatsuba products of both word types, against a product formed one word at a time, and
// against GMP for 64-bit words.
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <vector>

#ifdef KELVARA_HAVE_GMP
#include <gmp.h>
#endif

#include "multiply/basecase/double_word.h"
#include "multiply/basecase/karatsuba.h"
#include "multiply/basecase/kernels.h"
#include "multiply/basecase/schoolbook.h"
#include "support/random_words.h"

namespace {

using kelvara_test::Pattern;
using kelvara_test::Random;

template <typename W>
std::vector<W> make(Random& random, std::uint64_t n, Pattern pattern) {
    const std::vector<qmp::Word> words = kelvara_test::make_words(random, n, pattern);
    return std::vector<W>(words.begin(), words.end());
}

template <typename W>
std::vector<W> reference_product(const std::vector<W>& a, const std::vector<W>& b) {
    using Double = qmp::DoubleOf<W>;
    std::vector<W> result(a.size() + b.size(), 0);
    for (std::size_t j = 0; j < b.size(); ++j) {
        W carry = 0;
        for (std::size_t i = 0; i < a.size(); ++i) {
            const Double t = static_cast<Double>(a[i]) * b[j] + result[i + j] + carry;
            result[i + j] = static_cast<W>(t);
            carry = static_cast<W>(t >> qmp::WordTraits<W>::bits);
        }
        result[a.size() + j] = carry;
    }
#ifdef KELVARA_HAVE_GMP
    if constexpr (sizeof(W) == sizeof(mp_limb_t)) {
        std::vector<W> other(result.size());
        const bool a_longer = a.size() >= b.size();
        const auto& x = a_longer ? a : b;
        const auto& y = a_longer ? b : a;
        mpn_mul(other.data(), x.data(), static_cast<mp_size_t>(x.size()), y.data(),
                static_cast<mp_size_t>(y.size()));
        EXPECT_EQ(result, other);
    }
#endif
    return result;
}

constexpr std::size_t guard = 8;

// A buffer of garbage with guard words above, which must still be there when checked.
template <typename W>
class Guarded {
  public:
    explicit Guarded(std::size_t n) : n_(n), words_(n + guard, mark) {}
    W* data() { return words_.data(); }
    std::vector<W> value() const { return std::vector<W>(words_.begin(), words_.begin() + n_); }
    bool intact() const {
        return std::all_of(words_.begin() + n_, words_.end(), [](W w) { return w == mark; });
    }

  private:
    static constexpr W mark = static_cast<W>(kelvara_test::garbage);
    std::size_t n_;
    std::vector<W> words_;
};

template <typename W>
void expect_product(const std::vector<W>& a, const std::vector<W>& b) {
    Guarded<W> product(a.size() + b.size());
    Guarded<W> scratch(qmp::mulK_scratch<W>(a.size(), b.size()));
    qmp::mulK(product.data(), a.data(), a.size(), b.data(), b.size(), scratch.data());
    ASSERT_EQ(product.value(), reference_product(a, b)) << a.size() << " x " << b.size();
    ASSERT_TRUE(product.intact()) << a.size() << " x " << b.size();
    ASSERT_TRUE(scratch.intact()) << a.size() << " x " << b.size();
}

template <typename W>
void expect_square(const std::vector<W>& a) {
    Guarded<W> square(2 * a.size());
    Guarded<W> scratch(qmp::sqrK_scratch<W>(a.size()));
    qmp::sqrK(square.data(), a.data(), a.size(), scratch.data());
    ASSERT_EQ(square.value(), reference_product(a, a)) << a.size();
    ASSERT_TRUE(square.intact()) << a.size();
    ASSERT_TRUE(scratch.intact()) << a.size();
}

// Sets a threshold for the lifetime of the object.
class Threshold {
  public:
    Threshold(std::uint64_t& variable, std::uint64_t value) : variable_(variable), saved_(variable) {
        variable = value;
    }
    Threshold(const Threshold&) = delete;
    Threshold& operator=(const Threshold&) = delete;
    ~Threshold() { variable_ = saved_; }

  private:
    std::uint64_t& variable_;
    std::uint64_t saved_;
};

template <typename W>
class Basecase : public testing::Test {};
using BothWords = testing::Types<std::uint64_t, std::uint32_t>;
TYPED_TEST_SUITE(Basecase, BothWords);

TYPED_TEST(Basecase, SchoolbookOfEveryPairOfLengths) {
    using W = TypeParam;
    Random random(10);
    for (std::uint64_t la = 1; la <= 24; ++la) {
        for (std::uint64_t lb = 1; lb <= 24; ++lb) {
            for (Pattern pattern : {Pattern::uniform, Pattern::ones, Pattern::runs}) {
                const auto a = make<W>(random, la, pattern);
                const auto b = make<W>(random, lb, pattern);
                Guarded<W> product(la + lb);
                qmp::mulB(product.data(), a.data(), la, b.data(), lb);
                ASSERT_EQ(product.value(), reference_product(a, b)) << la << " x " << lb;
                ASSERT_TRUE(product.intact());
            }
        }
    }
}

TYPED_TEST(Basecase, KaratsubaOfEveryPairOfLengths) {
    using W = TypeParam;
    Random random(11);
    for (std::uint64_t la = 1; la <= 80; ++la) {
        for (std::uint64_t lb = 1; lb <= 80; ++lb) {
            const Pattern pattern =
                kelvara_test::all_patterns[(la + lb) % std::size(kelvara_test::all_patterns)];
            expect_product(make<W>(random, la, pattern), make<W>(random, lb, Pattern::uniform));
            expect_product(make<W>(random, la, Pattern::ones), make<W>(random, lb, Pattern::ones));
            if (this->HasFatalFailure()) return;
        }
    }
}

TYPED_TEST(Basecase, Squares) {
    using W = TypeParam;
    Random random(12);
    for (std::uint64_t n = 1; n <= 160; ++n) {
        for (Pattern pattern : kelvara_test::all_patterns) expect_square(make<W>(random, n, pattern));
        if (this->HasFatalFailure()) return;
    }
}

TYPED_TEST(Basecase, LongOperandsGoThroughEveryBlockPath) {
    using W = TypeParam;
    Random random(13);
    // With blocks of n words, the first block leaves LA - n words: every remainder of the rounds of two
    // blocks, with and without a block before the last, an exact last block, and short and long tails.
    for (std::uint64_t n : {18, 19, 20, 31}) {
        for (std::uint64_t la = n; la <= 8 * n + 1; ++la) {
            expect_product(make<W>(random, la, Pattern::uniform), make<W>(random, n, Pattern::runs));
            expect_product(make<W>(random, n, Pattern::ones), make<W>(random, la, Pattern::ones));
            if (this->HasFatalFailure()) return;
        }
    }
    expect_product(make<W>(random, 100, Pattern::uniform), make<W>(random, 20, Pattern::uniform));
    expect_product(make<W>(random, 100, Pattern::uniform), make<W>(random, 7, Pattern::uniform));
    expect_product(make<W>(random, 1000, Pattern::uniform), make<W>(random, 24, Pattern::ones));
}

TYPED_TEST(Basecase, EqualHalvesAndOrderedHalves) {
    using W = TypeParam;
    Random random(14);
    for (std::uint64_t n : {18, 19, 28, 29, 30, 31, 57, 64}) {
        const std::uint64_t l = n - n / 2;
        const std::uint64_t h = n / 2;
        // low = high, low > high by its odd top word only, low < high in the top word and in the bottom word.
        std::vector<std::vector<W>> operands(4, make<W>(random, n, Pattern::uniform));
        for (auto& a : operands) {
            for (std::uint64_t i = 0; i < h; ++i) a[l + i] = a[i];
            if (l > h) a[h] = 0;
        }
        operands[1][l - 1] = static_cast<W>(operands[1][l - 1] + 1);
        operands[2][n - 1] = static_cast<W>(-1);
        operands[2][h - 1] = 1;
        operands[3][0] = 0;
        operands[3][l] = 1;
        for (const auto& a : operands) {
            expect_square(a);
            for (const auto& b : operands) expect_product(a, b);
        }
        if (this->HasFatalFailure()) return;
    }
}

// At its threshold an operation takes scratch, below it none.
TYPED_TEST(Basecase, ThresholdsDecide) {
    using W = TypeParam;
    const std::uint64_t sqr = qmp::karatsuba_square_threshold<W>();
    const std::uint64_t mul = qmp::karatsuba_product_threshold<W>();
    EXPECT_EQ(sqr, sizeof(W) == 8 ? 15u : 16u);
    EXPECT_EQ(mul, sizeof(W) == 8 ? 14u : 18u);
    Random random(15);
    const auto writes_scratch = [&](std::uint64_t n, bool square) {
        const auto a = make<W>(random, n, Pattern::uniform);
        std::vector<W> product(2 * n);
        const std::vector<W> untouched(4 * n + 64, static_cast<W>(kelvara_test::garbage));
        std::vector<W> scratch = untouched;
        if (square) {
            qmp::sqrK(product.data(), a.data(), n, scratch.data());
        } else {
            qmp::elmK(product.data(), a.data(), a.data(), n, scratch.data());
        }
        return scratch != untouched;
    };
    EXPECT_FALSE(writes_scratch(mul - 1, false));
    EXPECT_TRUE(writes_scratch(mul, false));
    EXPECT_FALSE(writes_scratch(sqr - 1, true));
    EXPECT_TRUE(writes_scratch(sqr, true));
}

TYPED_TEST(Basecase, ThresholdsCanBeChanged) {
    using W = TypeParam;
    std::uint64_t& sqr = sizeof(W) == 8 ? qmp::c64i_sqr_threshold : qmp::c32i_sqr_threshold;
    std::uint64_t& mul = sizeof(W) == 8 ? qmp::c64i_mul_threshold : qmp::c32i_mul_threshold;
    Random random(16);
    for (std::uint64_t new_sqr : {2, 3, 8, 40}) {
        for (std::uint64_t new_mul : {2, 3, 5, 9, 40}) {
            const Threshold change_sqr(sqr, new_sqr);
            const Threshold change_mul(mul, new_mul);
            for (std::uint64_t n = 1; n <= 45; ++n) {
                expect_square(make<W>(random, n, Pattern::runs));
                expect_square(make<W>(random, n, Pattern::ones));
                expect_product(make<W>(random, n, Pattern::uniform), make<W>(random, n, Pattern::ones));
                expect_product(make<W>(random, n, Pattern::runs),
                               make<W>(random, (n * 37) % 97 + 1, Pattern::ones));
                if (this->HasFatalFailure()) return;
            }
        }
    }
}

// K(n) written out: a sum over the halvings at either threshold, the block's product, and n + 1 words.
TYPED_TEST(Basecase, ScratchFormula) {
    using W = TypeParam;
    const std::uint64_t word = sizeof(W);
    const std::uint64_t sqr = qmp::karatsuba_square_threshold<W>();
    const std::uint64_t mul = qmp::karatsuba_product_threshold<W>();
    const auto sum = [](std::uint64_t n, std::uint64_t limit) {
        std::uint64_t total = 0;
        for (std::uint64_t m = n; m >= limit; m = (m + 1) / 2) total += (m + 1) / 2 * 2;
        return total;
    };
    std::uint64_t previous = 0;
    for (std::uint64_t n = 1; n <= 3000; ++n) {
        const std::uint64_t expected =
            n < mul ? word * (sum(n, sqr) + n + 1)
                    : std::max(word * sum(n, sqr), 2 * word * n + word * sum(n, mul)) + word * (n + 1);
        const std::uint64_t bytes = qmp::karatsuba_scratch_bytes<W>(n);
        ASSERT_EQ(bytes, expected) << n;
        ASSERT_GE(bytes, previous) << n;
        previous = bytes;
        ASSERT_GE(bytes, word * qmp::sqrK_scratch<W>(n));
        ASSERT_GE(bytes, word * qmp::elmK_scratch<W>(n));
        for (std::uint64_t lb = 1; lb <= n; lb += n / 50 + 1) {
            ASSERT_GE(bytes, word * qmp::mulK_scratch<W>(n, lb));
            ASSERT_GE(bytes, word * qmp::mulK_scratch<W>(2 * n, lb));
        }
    }
}

TEST(BasecaseScratch, KnownValues) {
    EXPECT_EQ(qmp::karatsuba_scratch_bytes<std::uint64_t>(13), 8u * 14);
    EXPECT_EQ(qmp::karatsuba_scratch_bytes<std::uint64_t>(14), 16u * 14 + 8u * 14 + 8u * 15);
    EXPECT_EQ(qmp::karatsuba_scratch_bytes<std::uint64_t>(58), 16u * 58 + 8u * (58 + 30 + 16) + 8u * 59);
}

// The named entry points and kernels of both families.
TEST(BasecaseNames, AllFormTheSameProducts) {
    Random random(17);
    constexpr std::uint64_t n = 40;
    constexpr std::uint64_t m = 23;
#define CHECK_FAMILY(family, W)                                                                              \
    {                                                                                                        \
        const auto a = make<W>(random, n, Pattern::uniform);                                                 \
        const auto b = make<W>(random, n, Pattern::runs);                                                    \
        const auto c = make<W>(random, m, Pattern::runs);                                                    \
        std::vector<W> s(8 * n);                                                                             \
        const auto check = [&](const std::vector<W>& x, const std::vector<W>& y, auto run) {                 \
            Guarded<W> product(x.size() + y.size());                                                         \
            run(product.data());                                                                             \
            EXPECT_EQ(product.value(), reference_product(x, y));                                             \
            EXPECT_TRUE(product.intact());                                                                   \
        };                                                                                                   \
        using namespace qmp;                                                                                 \
        check(a, a, [&](W* p) { qmb_MULB_##family##_sqrB(p, a.data(), n); });                                \
        check(a, b, [&](W* p) { qmb_MULB_##family##_elmB(p, a.data(), b.data(), n); });                      \
        check(a, c, [&](W* p) { qmb_MULB_##family##_mulB(p, a.data(), n, c.data(), m); });                   \
        check(a, a, [&](W* p) { qmb_MULB_##family##_sqr(p, a.data(), n, s.data()); });                       \
        check(a, b, [&](W* p) { qmb_MULB_##family##_elm(p, a.data(), b.data(), n, s.data()); });             \
        check(a, c, [&](W* p) { qmb_MULB_##family##_mul(p, a.data(), n, c.data(), m, s.data()); });          \
        check(a, a, [&](W* p) { qmh_MULB_##family##_v0_sqrB_Default_mul64_u0(p, a.data(), n); });            \
        check(a, b, [&](W* p) { qmh_MULB_##family##_v0_elmB_Default_mul64_u0(p, a.data(), b.data(), n); });  \
        check(a, c,                                                                                          \
              [&](W* p) { qmh_MULB_##family##_v0_mulB_Default_mul64_u0(p, a.data(), n, c.data(), m); });     \
        check(a, a, [&](W* p) { qmh_MULB_##family##_v0_sqrK_Default_u0(p, a.data(), n, s.data()); });        \
        check(a, b,                                                                                          \
              [&](W* p) { qmh_MULB_##family##_v0_elmK_Default_u0(p, a.data(), b.data(), n, s.data()); });    \
        check(a, c,                                                                                          \
              [&](W* p) { qmh_MULB_##family##_v0_mulK_Default_u0(p, a.data(), n, c.data(), m, s.data()); }); \
    }
    CHECK_FAMILY(c64i, std::uint64_t)
    CHECK_FAMILY(c32i, std::uint32_t)
#undef CHECK_FAMILY
}

}  // namespace
