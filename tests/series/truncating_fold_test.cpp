// Plans of many blocks, whose running sums are cut at every fold, against the exact sum of the same terms.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "constants/pi_formulas.h"
#include "multiply/multiply.h"
#include "platform/parallel/registry.h"
#include "series/psr_evaluate.h"
#include "series/test_series.h"

namespace qmp {
namespace {

using kelvara_test::ExactValue;
using kelvara_test::LogSeries;

// A positive number: words from position exp upward.
struct Number {
    std::vector<Word> words;
    std::int64_t exp;

    std::int64_t top() const { return exp + static_cast<std::int64_t>(words.size()); }
};

Number number(BigFloatView x) {
    return {{x.T, x.T + x.L}, x.exp};
}
Number number(const ExactValue& x) {
    return {x.words, x.exp};
}

Number product(const Number& a, const Number& b) {
    const std::uint64_t n = a.words.size() + b.words.size();
    const CheckedWords scratch(nullptr, scratch_words_for(n, 1));
    const MultiplyContext context(ParallelContext::sequential(), &kelvara_test::shared_twiddles(),
                                  scratch.data(), scratch.words());
    Number result = {std::vector<Word>(n), a.exp + b.exp};
    multiply(context, result.words.data(), a.words.data(), a.words.size(), b.words.data(), b.words.size());
    if (result.words.back() == 0) result.words.pop_back();
    return result;
}

// The same number with words from position exp on, which is below its own.
std::vector<Word> words_from(const Number& x, std::int64_t exp, std::int64_t top) {
    std::vector<Word> words(static_cast<std::size_t>(top - exp), 0);
    std::copy(x.words.begin(), x.words.end(), words.begin() + (x.exp - exp));
    return words;
}

double log2_of(const std::vector<Word>& words, std::int64_t exp) {
    std::size_t n = words.size();
    while (n > 0 && words[n - 1] == 0) n--;
    if (n == 0) return -std::numeric_limits<double>::infinity();
    const double next = n > 1 ? static_cast<double>(words[n - 2]) * 0x1p-64 : 0;
    return std::log2(static_cast<double>(words[n - 1]) + next) +
           64.0 * static_cast<double>(exp + static_cast<std::int64_t>(n) - 1);
}

// The binary logarithm of |a - b| / b.
double log2_relative_difference(const Number& a, const Number& b) {
    const std::int64_t exp = std::min(a.exp, b.exp);
    const std::int64_t top = std::max(a.top(), b.top());
    std::vector<Word> x = words_from(a, exp, top);
    std::vector<Word> y = words_from(b, exp, top);
    if (std::lexicographical_compare(x.rbegin(), x.rend(), y.rbegin(), y.rend())) x.swap(y);
    std::vector<Word> difference(x.size());
    bool borrow = false;
    for (std::size_t i = 0; i < x.size(); i++) {
        difference[i] = x[i] - y[i] - borrow;
        borrow = x[i] < y[i] || (x[i] == y[i] && borrow);
    }
    return log2_of(difference, exp) - log2_of(b.words, b.exp);
}

// P/Q from block `first` on against the one exact block of these terms, by cross products.
//
// The terms from a block's start on shrink by the factor R^-d, R = 2^64; its precision_at_a is at least
// d + 1. A cut to two words more, of which a product's highest may be zero, costs less than R^-(d + 1) of
// the value, and what it costs a later block's sum enters this one as much smaller as that sum is. A fold
// makes five cuts. Common factors of P and Q, cut as well, do not matter.
template <typename Series>
void expect_folded_like_exact(const Series& series, const PsrPlan& plan, std::uint64_t first,
                              ParallelContext parallel) {
    SCOPED_TRACE(testing::Message() << "block " << first << " of " << plan.blocks.size() << ", "
                                    << parallel.tds << " tasks");
    SilentProgress progress;
    const ComputeContext context = {parallel, &kelvara_test::shared_twiddles(), nullptr, &progress};
    PsrMemory memory(context, series.SizesForPlan(plan, first, parallel.tds));
    BigFloat P;
    BigFloat Q;
    B_PSR(series, context.multiply(memory.scratch), &progress, plan, first, memory, P, Q);
    const PsrBlock& block = plan.blocks[first];
    if (first < plan.last()) {
        EXPECT_LE(P.L, block.precision_at_a + big_float_extra_precision);
        EXPECT_LE(Q.L, block.precision_at_a + big_float_extra_precision);
    }
    const auto exact = kelvara_test::block_sum(series, ParallelContext::sequential(), block.a, plan.terms,
                                               psr_size(series, block.a, plan.terms), 0);
    const Number ours = product(number(P.view()), number(exact[1]));
    const Number theirs = product(number(exact[0]), number(Q.view()));
    const double decay =
        series.DecayBetween(static_cast<double>(block.a), static_cast<double>(plan.terms)) / std::log(2.0);
    const double cuts = 5.0 * static_cast<double>(plan.blocks.size() - first);
    EXPECT_LE(log2_relative_difference(ours, theirs), std::log2(cuts) - decay - 64.0);
}

template <typename Series>
void expect_every_first_block(const Series& series, std::uint64_t p, double factor) {
    SCOPED_TRACE(testing::Message() << p << " words, factor " << factor);
    const PsrPlan plan = build_psr_plan(series, p, factor);
    ASSERT_GT(plan.blocks.size(), 2u);
    for (std::uint64_t first = 0; first < plan.blocks.size(); first++) {
        expect_folded_like_exact(series, plan, first, ParallelContext::sequential());
    }
}

TEST(TruncatingFold, OfChudnovskysSeries) {
    for (const std::uint64_t p : {736u, 737u, 1000u, 1999u, 5000u}) {
        for (const double factor : {1.0, 0.5, 0.1}) {
            expect_every_first_block(kelvara::pi_formula(0).series, p, factor);
        }
    }
}

TEST(TruncatingFold, OfRamanujansSeries) {
    for (const std::uint64_t p : {600u, 2500u}) {
        expect_every_first_block(kelvara::pi_formula(1).series, p, 1.0);
        expect_every_first_block(kelvara::pi_formula(1).series, p, 0.5);
    }
}

TEST(TruncatingFold, OfTwoPartSeries) {
    for (const bool alternates : {false, true}) {
        expect_every_first_block(LogSeries(alternates), 100, 1.0);
        expect_every_first_block(LogSeries(alternates), 333, 0.5);
    }
}

TEST(TruncatingFold, OnSeveralTasks) {
    const auto framework = make_default_parallelizer();
    const auto& series = kelvara::pi_formula(0).series;
    const PsrPlan plan = build_psr_plan(series, 5000, 1.0);
    for (const std::uint64_t tasks : {2u, 3u, 16u}) {
        for (const std::uint64_t first : {std::uint64_t{0}, std::uint64_t{1}, plan.last()}) {
            expect_folded_like_exact(series, plan, first, {tasks, framework.get()});
        }
    }
}

}  // namespace
}  // namespace qmp
