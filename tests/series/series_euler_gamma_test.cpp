// The sums of the Brent-McMillan method: leaves, merges, splits, sizes, folds.
#include "series/series_euler_gamma_bm_ab.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "errors/bsr_modular_check.h"
#include "errors/exception.h"
#include "series/euler_gamma_pairs.h"
#include "series/euler_gamma_sums.h"
#include "series/leaf_euler_gamma_bm_ab.h"
#include "series/psr_evaluate.h"
#include "series/test_series.h"
#include "series/transform_pair.h"

namespace qmp {
namespace {

using kelvara_test::block_sum;
using kelvara_test::ExactValue;
using kelvara_test::PlannedBuffers;
using Series = Series_EulerGamma_BM_AB;

// The outputs of a leaf, each in a buffer of exactly the words that it asks for.
struct Leaf {
    std::vector<CheckedWords> memory;
    std::array<ExactFloat, 4> out;

    Leaf(std::int32_t exponent, std::uint64_t a, std::uint64_t b, std::uint64_t fewer = 0) {
        for (ExactFloat& x : out) {
            const std::uint64_t words =
                euler_gamma_leaf_words(exponent, a, b) + euler_gamma_leaf_spare_words - fewer;
            memory.emplace_back(nullptr, words);
            kelvara_test::fill_garbage(memory.back().data(), words);
            x = ExactFloat(memory.back().data(), words);
        }
        EulerGamma_BM_AB_BSR_End(out[0], out[1], out[2], out[3], exponent, a, b);
        for (const CheckedWords& buffer : memory) buffer.check();
    }
    std::vector<ExactValue> values() const {
        return {ExactValue::of(out[0]), ExactValue::of(out[1]), ExactValue::of(out[2]),
                ExactValue::of(out[3])};
    }
};

// Whether two numbers are equal, whatever zero words they begin with.
bool same_value(ExactFloat a, ExactFloat b) {
    for (ExactFloat* x : {&a, &b}) {
        for (; *x->T == 0; x->T++, x->exp++) x->L--;
    }
    return a.exp == b.exp && a.L == b.L && std::equal(a.T, a.T + a.L, b.T);
}

constexpr std::int32_t exponents[] = {-1, 0, 1, 2, 5, 22, 31, 32, 40, 63};

TEST(EulerGammaLeaf, OfOneTerm) {
    for (const std::int32_t e : exponents) {
        for (const std::uint64_t k : {1u, 2u, 3u, 16u, 31u, 32u, 33u, 100u}) {
            const Leaf leaf(e, k - 1, k);
            const std::int64_t bits = 2 * e * static_cast<std::int64_t>(k);
            const auto& [P, Q, R, S] = leaf.out;
            for (const ExactFloat* x : {&P, &Q, &R, &S}) {
                ASSERT_EQ(x->L, 1u);
                EXPECT_EQ(recheck(ParallelContext::sequential(), *x), 0u);
            }
            EXPECT_EQ(P.T[0], 1u);
            EXPECT_EQ(Q.T[0], k);
            for (const ExactFloat* power : {&R, &S}) {
                EXPECT_EQ(power->exp, bits >> 6);
                EXPECT_EQ(power->T[0], Word{1} << (bits & 63)) << e << ", " << k;
            }
        }
    }
}

TEST(EulerGammaLeaf, AsksForItsCapacity) {
    try {
        Leaf(22, 0, 15, 1);
        FAIL();
    } catch (const BufferTooSmallException& e) {
        EXPECT_EQ(e.function(), "EulerGamma_BM_AB_BSR_End()");
        EXPECT_EQ(e.required_size(), euler_gamma_leaf_words(22, 0, 15) + euler_gamma_leaf_spare_words);
        EXPECT_EQ(e.buffer_size(), e.required_size() - 1);
    }
}

// By the engine's merge, in buffers that a block would have.
TEST(EulerGammaLeaf, OfTwoTermsIsTheMergeOfSingleOnes) {
    for (const std::int32_t e : exponents) {
        for (const std::uint64_t a : {0u, 1u, 6u, 31u, 2097150u}) {
            PlannedBuffers<Series> left({100, 0});
            PlannedBuffers<Series> right({100, 0});
            const Series series(e);
            const MultiplyContext context(ParallelContext::sequential(), &kelvara_test::shared_twiddles(),
                                          nullptr, 0);
            series.leaf(context, left.buffers, a, a + 1);
            series.leaf(context, right.buffers, a + 1, a + 2);
            Series::merge(context, left.buffers, right.buffers, false);
            left.check();
            const Leaf both(e, a, a + 2);
            for (std::size_t i = 0; i < 4; i++) {
                EXPECT_TRUE(same_value(left.buffers[i], both.out[i])) << e << ", " << a << ", " << i;
                EXPECT_EQ(left.buffers[i].hash, both.out[i].hash);
                EXPECT_EQ(recheck(ParallelContext::sequential(), left.buffers[i]), 0u);
            }
        }
    }
}

// Leaves far behind n, where the factors of a pair are as large as they come, against the merge of two: every
// carry of the loops through the words takes part.
TEST(EulerGammaLeaf, WithTheLargestFactorsIsTheMergeOfItsHalves) {
    constexpr std::uint64_t end = (std::uint64_t{1} << 31) - 1;
    for (const std::int32_t e : {0, 1, 15, 30}) {
        for (std::uint64_t n = 2; n < 64; n++) {
            PlannedBuffers<Series> left({400, 0});
            PlannedBuffers<Series> right({400, 0});
            const CheckedWords scratch(nullptr, TableScratch(600, 1) / sizeof(Word) + 8);
            const Series series(e);
            const MultiplyContext context(ParallelContext::sequential(), &kelvara_test::shared_twiddles(),
                                          scratch.data(), scratch.words());
            series.leaf(context, left.buffers, end - n, end - n / 2);
            series.leaf(context, right.buffers, end - n / 2, end);
            Series::merge(context, left.buffers, right.buffers, false);
            const Leaf both(e, end - n, end);
            for (std::size_t i = 0; i < 4; i++) {
                EXPECT_TRUE(same_value(left.buffers[i], both.out[i])) << e << ", " << n << ", " << i;
                EXPECT_EQ(left.buffers[i].hash, both.out[i].hash);
            }
        }
    }
}

TEST(EulerGammaSplits, AreEven) {
    const Series series(10);
    for (std::uint64_t a = 0; a < 40; a++) {
        for (std::uint64_t b = a + 3; b < a + 300; b++) {
            for (const std::uint64_t m : {series.split(a, b), series.cost_split(a, b)}) {
                EXPECT_EQ(m % 2, 0u) << a << ", " << b;
                EXPECT_LT(m, b);
                EXPECT_GT(m, a) << a << ", " << b;
            }
        }
    }
    EXPECT_EQ(series.split(0, 10), 4u);  // 11 / 2, and down to an even index
    EXPECT_EQ(series.split(0, 12), 6u);
}

TEST(EulerGammaTerms, ReachThePrecision) {
    for (const std::int32_t e : {-1, 0, 3, 10, 22}) {
        const Series series(e);
        const double n = std::ldexp(1.0, e);
        for (const std::uint64_t p : {1u, 7u, 100u, 5000u}) {
            const std::uint64_t terms = series.TermsForPrecision(p);
            const auto log_term = [&](double k) { return 2 * (k * e * std::log(2.0) - std::lgamma(k + 1)); };
            const double largest = log_term(std::max(1.0, n));
            const auto k = static_cast<double>(terms);
            EXPECT_GE(largest - log_term(k), static_cast<double>(p) * 44.36) << e << ", " << p;
            EXPECT_LT(largest - log_term(k - 4), static_cast<double>(p) * 44.37 + 5) << e << ", " << p;
            EXPECT_GE(k, n);
        }
    }
    // No overflow at the largest parameter.
    EXPECT_GT(Series(63).TermsForPrecision(7), std::uint64_t{1} << 63);
    EXPECT_LT(Series(63).TermsForPrecision(7), (std::uint64_t{1} << 63) + (std::uint64_t{1} << 62));
}

TEST(EulerGammaTerms, LoseNothingUpToN) {
    const Series series(10);
    EXPECT_EQ(series.DecayBetween(0, 1024), 0);
    EXPECT_GT(series.DecayBetween(0, 1100), 0);
    EXPECT_EQ(series.DecayBetween(0, 3000), series.DecayBetween(1024, 3000));
    try {
        series.PrecisionAtIndex(1, 10);
        FAIL();
    } catch (const StringException& e) {
        EXPECT_EQ(e.message(), "Required to use ASR.");
    }
}

TEST(EulerGammaSizes, FollowTheModel) {
    const Series series(10);
    const auto log_factorial_of = [](double x) { return (x + 0.5) * (std::log(x) - 1) + 1.4189385332046727; };
    for (const double x : {10.0, 1024.0, 5000.0}) {
        const double m = std::min(x, 1024.0);
        EXPECT_NEAR(series.SizeAtIndex(x),
                    2 * (m * 10 * std::log(2.0) - log_factorial_of(m)) +
                        3 * (log_factorial_of(x) + 3.792370162778007),
                    1e-6);
        EXPECT_EQ(series.SizeAtIndexPSR(x), series.SizeAtIndex(x));
    }
    EXPECT_FALSE(series.alternating);
    EXPECT_EQ(series.size_margin, 22u);
}

#ifdef KELVARA_HAVE_GMP

using kelvara_test::euler_gamma_sums;
using kelvara_test::integer_of;

TEST(EulerGammaLeaf, EqualsItsDefinition) {
    for (const std::int32_t e : exponents) {
        for (const std::uint64_t a :
             {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{7}, std::uint64_t{1000},
              (std::uint64_t{1} << 21) - 5, (std::uint64_t{1} << 32) - 5, std::uint64_t{1} << 35}) {
            for (std::uint64_t n = 1; n <= 20; n++) {
                const Leaf leaf(e, a, a + n);
                for (const ExactFloat& x : leaf.out) {
                    EXPECT_EQ(recheck(ParallelContext::sequential(), x), 0u);
                    EXPECT_NE(x.T[x.L - 1], 0u);
                }
                // Powers of other n behind that many terms would fill the memory.
                if (a > 10000 && e != 0) continue;
                const std::int64_t scale = e < 0 ? static_cast<std::int64_t>(a + n) : 0;
                const auto expected = euler_gamma_sums(e, a, a + n, scale);
                for (std::size_t i = 0; i < 4; i++) {
                    EXPECT_TRUE(integer_of(leaf.out[i], scale) == expected[i])
                        << "n = 2^" << e << ", (" << a << ", " << a + n << "], output " << i;
                }
            }
        }
    }
}

// Where pairs of terms end: at the last index and the last exponent that they take, and at long leaves.
TEST(EulerGammaLeaf, InPairsAndTermByTerm) {
    struct Edge {
        std::int32_t e;
        std::uint64_t a;
    };
    constexpr std::uint64_t last = (std::uint64_t{1} << 31) - 1;
    const Edge edges[] = {{0, last - 30}, {0, last - 33}, {30, 0}, {31, 0}, {30, 5}, {1, 0}, {3, 11}};
    for (const Edge& edge : edges) {
        for (const std::uint64_t n : {29u, 30u, 31u, 32u, 33u, 34u, 35u, 62u, 63u}) {
            const std::uint64_t b = edge.a + n;
            const Leaf leaf(edge.e, edge.a, b);
            const auto expected = euler_gamma_sums(edge.e, edge.a, b, 0);
            for (std::size_t i = 0; i < 4; i++) {
                EXPECT_EQ(recheck(ParallelContext::sequential(), leaf.out[i]), 0u);
                EXPECT_NE(leaf.out[i].T[leaf.out[i].L - 1], 0u);
                EXPECT_TRUE(integer_of(leaf.out[i], 0) == expected[i])
                    << "n = 2^" << edge.e << ", (" << edge.a << ", " << b << "], output " << i;
            }
        }
    }
    EXPECT_TRUE(sum_in_pairs(30, last));
    EXPECT_FALSE(sum_in_pairs(30, last + 1));
    EXPECT_FALSE(sum_in_pairs(31, 2));
    EXPECT_FALSE(sum_in_pairs(-1, 2));
}

// Merges of every kind: of words, by transforms, before and after the largest term, with odd beginnings.
TEST(EulerGammaMerges, EqualTheDefinition) {
    struct Range {
        std::int32_t e;
        std::uint64_t a;
        std::uint64_t b;
    };
    const Range ranges[] = {{-1, 0, 300}, {0, 0, 500},    {3, 0, 40},    {3, 1, 600},    {5, 7, 200},
                            {9, 0, 1200}, {9, 311, 1500}, {12, 0, 1100}, {12, 3, 900},   {30, 0, 700},
                            {63, 0, 600}, {63, 301, 800}, {1, 0, 17},    {10, 500, 1600}};
    for (const Range& r : ranges) {
        const Series series(r.e);
        const std::uint64_t size = psr_size(series, r.a, r.b);
        PlannedBuffers<Series> planned(BSR_sizes(series, size, 1, 1));
        const MultiplyContext context(ParallelContext::sequential(), &kelvara_test::shared_twiddles(),
                                      planned.scratch.data(), planned.scratch.words());
        BSR_block(series, context, nullptr, planned.buffers, r.a, r.b, 1);
        planned.check();
        qcb_Verify_BSR(nullptr, r.a, r.b, {planned.buffers.data(), 4}, ParallelContext::sequential());
        const std::int64_t scale = r.e < 0 ? static_cast<std::int64_t>(r.b) : 0;
        const auto expected = euler_gamma_sums(r.e, r.a, r.b, scale);
        for (std::size_t i = 0; i < 4; i++) {
            EXPECT_TRUE(integer_of(planned.buffers[i], scale) == expected[i])
                << "n = 2^" << r.e << ", (" << r.a << ", " << r.b << "], output " << i;
            EXPECT_LE(planned.buffers[i].L, size + series.size_margin);
        }
    }
}

#endif

TEST(EulerGammaMerges, DoNotDependOnTheTasks) {
    const Series series(11);
    const std::uint64_t size = psr_size(series, 0, 6000);
    const auto one = block_sum(series, ParallelContext::sequential(), 0, 6000, size, 1);
    for (const auto& framework : kelvara_test::frameworks()) {
        for (const std::uint64_t tasks : {2u, 3u, 16u}) {
            EXPECT_EQ(block_sum(series, {tasks, framework.get()}, 0, 6000, size, 1), one) << tasks;
        }
    }
    EXPECT_EQ(block_sum(series, ParallelContext::sequential(), 0, 6000, size, 0), one);
}

TEST(EulerGammaVerify, FindsAFlippedBitInEveryOutput) {
    const Series series(8);
    for (std::size_t damaged = 0; damaged < 4; damaged++) {
        PlannedBuffers<Series> planned(BSR_sizes(series, psr_size(series, 0, 900), 0, 1));
        const MultiplyContext context(ParallelContext::sequential(), &kelvara_test::shared_twiddles(),
                                      planned.scratch.data(), planned.scratch.words());
        BSR_block(series, context, nullptr, planned.buffers, 0, 900, 0);
        planned.buffers[damaged].T[3] ^= 1;
        try {
            qcb_Verify_BSR(nullptr, 0, 900, {planned.buffers.data(), 4}, ParallelContext::sequential());
            FAIL();
        } catch (const kelvara::BSRModularCheckFailedException& e) {
            ASSERT_EQ(e.hash().size(), 4u);
            for (std::size_t i = 0; i < 4; i++) EXPECT_EQ(e.hash()[i] != 0, i == damaged);
        }
    }
}

// What an evaluation leaves, and the same from one block.
struct Sums {
    std::vector<CheckedWords> memory;
    Series::Running values;
};

Sums evaluate(const Series& series, const PsrPlan& plan, ParallelContext parallel) {
    SilentProgress progress;
    const ComputeContext context = {parallel, &kelvara_test::shared_twiddles(), nullptr, &progress};
    PsrMemory memory(context, series.SizesForPlan(plan, 0, parallel.tds), 3);
    Sums sums;
    Series::Running running;
    B_PSR(series, context.multiply(memory.scratch), &progress, plan, 0, memory, running);
    for (std::size_t i = 0; i < running.size(); i++) {
        sums.memory.emplace_back(nullptr, running[i].L);
        sums.values[i] = BigFloat(sums.memory.back().data(), running[i].L);
        sums.values[i].set_BigFloat(ParallelContext::sequential(), running[i], running[i].L);
    }
    for (std::size_t i = 0; i < 3; i++) {
        memory.exact[i].check();
        memory.running[i].check();
    }
    memory.scratch.check();
    return sums;
}

TEST(EulerGammaFold, DoesNotDependOnTheTasks) {
    const Series series(10);
    const PsrPlan plan = build_psr_plan(series, 250, 1.0);
    ASSERT_GT(plan.blocks.size(), 5u);
    const Sums one = evaluate(series, plan, ParallelContext::sequential());
    const auto framework = make_parallelizer("pushpool");
    for (const std::uint64_t tasks : {2u, 16u}) {
        const Sums other = evaluate(series, plan, {tasks, framework.get()});
        for (std::size_t i = 0; i < one.values.size(); i++) {
            EXPECT_EQ(ucmp(one.values[i], other.values[i]), 0) << tasks << ", " << i;
        }
    }
}

#ifdef KELVARA_HAVE_GMP

// The quotient of the folded sums, ((P + Q) R - Q S) / (Q (R + Q^2)), against the one of the exact sums.
TEST(EulerGammaFold, KeepsThePrecision) {
    for (const std::int32_t e : {8, 9}) {
        for (const std::uint64_t p : {150u}) {
            const Series series(e);
            const PsrPlan plan = build_psr_plan(series, p, 1.0);
            EXPECT_GT(plan.blocks.size(), 2u);
            Sums sums = evaluate(series, plan, ParallelContext::sequential());
            // Of Q^2, Q P, R and S.
            const auto quotient = [p](const std::array<kelvara_test::Integer, 4>& x) {
                const auto& [D, M, R, S] = x;
                kelvara_test::Integer result = (D + M) * R;
                kelvara_test::Integer subtrahend = D * S;
                mpz_sub(result.get(), result.get(), subtrahend.get());
                result = result << 64 * (p - 1);
                kelvara_test::Integer denominator = D * (R + D);
                mpz_fdiv_q(result.get(), result.get(), denominator.get());
                return result;
            };
            const auto folded = [&](std::size_t i) {
                const BigFloat& x = sums.values[i];
                return integer_of(ExactFloatView{x.T, x.L, x.exp, 0}, 0);
            };
            const auto exact = euler_gamma_sums(e, 0, plan.terms, 0);
            const auto& [P, Q, R, S] = exact;
            kelvara_test::Integer difference = quotient({Q * Q, Q * P, R, S});
            kelvara_test::Integer other = quotient({folded(0), folded(1), folded(2), folded(3)});
            mpz_sub(difference.get(), difference.get(), other.get());
            // In units of word p - 1 behind the point.
            EXPECT_LE(mpz_cmpabs_ui(difference.get(), 1), 0) << e << ", " << p;
        }
    }
}

#endif

TEST(EulerGammaFold, NamesABufferThatIsTooSmall) {
    const Series series(10);
    const PsrPlan plan = build_psr_plan(series, 250, 1.0);
    SilentProgress progress;
    const ComputeContext context = {ParallelContext::sequential(), &kelvara_test::shared_twiddles(), nullptr,
                                    &progress};
    PlanSizes sizes = series.SizesForPlan(plan, 0, 1);
    const PsrBlock& last = plan.blocks.back();
    sizes.exact_words = (BSR_sizes(series, last.size, 0, 1).words & ~std::uint64_t{7}) - 8;
    PsrMemory memory(context, sizes, 3);
    Series::Running running;
    try {
        B_PSR(series, context.multiply(memory.scratch), &progress, plan, 0, memory, running);
        FAIL();
    } catch (const BufferTooSmallException& e) {
        EXPECT_EQ(e.function(), "Series_EulerGamma_BM_AB::B_PSR()");
    }
}

TEST(TransformPair, SquaresWhatItKeeps) {
    kelvara_test::Random random;
    for (const std::uint64_t n : {3u, 20u, 29u, 40u, 300u, 6000u}) {
        const auto a = kelvara_test::make_words(random, n);
        const auto b = kelvara_test::make_words(random, n);
        const CheckedWords scratch(nullptr, TableScratch(2 * n + 6, 1) / 8 + 8);
        const MultiplyContext context(ParallelContext::sequential(), &kelvara_test::shared_twiddles(),
                                      scratch.data(), scratch.words());
        const std::uint64_t check = check_mul(hash_words(0, 8, a.data(), n), check_word_weight(3));
        std::vector<Word> memory(8 * n);
        const auto buffer = [&](std::uint64_t i) { return memory.data() + i * 2 * n; };
        ExactFloat expected(buffer(0), 2 * n), square(buffer(1), 2 * n), product(buffer(2), 2 * n),
            expected_product(buffer(3), 2 * n);
        const ExactFloatView x = {a.data(), n, 3, check};
        const ExactFloatView y = {b.data(), n, -1, 5};
        expected.set_mul(context, x, x);
        expected_product.set_mul(context, x, y);
        ExactTransformPair pair(context, 2 * n);
        pair.load(1, x);
        pair.square(square, 1);
        EXPECT_EQ(ExactValue::of(square), ExactValue::of(expected)) << n;
        EXPECT_EQ(square.hash, expected.hash);
        EXPECT_EQ(recheck(ParallelContext::sequential(), square), 0u);
        pair.load(0, y);
        pair.multiply(product, 0);
        EXPECT_EQ(ExactValue::of(product), ExactValue::of(expected_product)) << n;

        const BigFloatView f = {a.data(), n, -7, 0};
        BigFloat whole(buffer(0), 2 * n), kept(buffer(1), 2 * n);
        whole.set_sqr(context, f, 2 * n);
        FloatTransformPair floats(context, 2 * n + 6);
        floats.load(0, f);
        floats.square(kept, 0, 2 * n);
        EXPECT_EQ(ucmp(whole, kept), 0) << n;
        EXPECT_EQ(kept.sign, 1);
    }
}

}  // namespace
}  // namespace qmp
