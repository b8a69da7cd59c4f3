// Sums whose merges take common factors out, against those whose merges do not.
#include "series/common_factors.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <optional>
#include <string>

#include "constants/arccoth_series.h"
#include "constants/catalan_lupas.h"
#include "constants/lemniscate_series.h"
#include "constants/pi_formulas.h"
#include "constants/zeta3_series.h"
#include "multiply/basecase/schoolbook.h"
#include "multiply/basecase/word_kernels.h"
#include "series/test_series.h"
#include "support/twiddled_context.h"

namespace qmp {
namespace {

using kelvara_test::ExactValue;
using kelvara_test::PlannedBuffers;

struct Candidate {
    std::string name;
    std::shared_ptr<const BSS_P2B3_Type0> series;
};

std::vector<Candidate> candidates() {
    const auto lasting = [](const BSS_P2B3_Type0& series) {
        return std::shared_ptr<const BSS_P2B3_Type0>(&series, [](const BSS_P2B3_Type0*) {});
    };
    return {
        {"Chudnovsky", lasting(kelvara::pi_formula(0).series)},
        {"Ramanujan", lasting(kelvara::pi_formula(1).series)},
        {"Zeta(3), long", lasting(kelvara::zeta3_formula(0).series)},
        {"Zeta(3), short", lasting(kelvara::zeta3_formula(1).series)},
        {"Lupas", lasting(kelvara::catalan_lupas_formula().series)},
        {"ArcCoth(2)", std::make_shared<kelvara::ArcCothSeries>(2)},
        {"ArcCoth(26)", std::make_shared<kelvara::ArcCothSeries>(26)},
        {"ArcCoth(2^32 - 1)", std::make_shared<kelvara::ArcCothSeries>(4294967295)},
        {"ArcSinlemn(1/2)", std::make_shared<kelvara::ArcSinlemnSeries>(kelvara::ArcSinlemnArgument{1, 2})},
        {"ArcSinlemn(7/23)", std::make_shared<kelvara::ArcSinlemnSeries>(kelvara::ArcSinlemnArgument{7, 23})},
    };
}

// P, Q, R of (a, b], checked against their check values.
std::vector<ExactValue> sum(const BSS_P2B3_Type0& series, std::uint64_t a, std::uint64_t b,
                            CommonFactors* factors,
                            const ParallelContext& parallel = ParallelContext::sequential(),
                            std::uint64_t depth = 0) {
    PlannedBuffers<BSS_P2B3_Type0> planned(BSR_sizes(series, psr_size(series, a, b), depth, parallel.tds));
    const MultiplyContext context(parallel, &kelvara_test::shared_twiddles(), planned.scratch.data(),
                                  planned.scratch.words());
    if (factors) factors->prepare(context, b - a);
    BSR_block(series, context, nullptr, planned.buffers, a, b, depth, RangeFactors(factors));
    planned.check();
    qcb_Verify_BSR(nullptr, a, b, {planned.buffers.data(), 3}, parallel);
    return planned.values();
}

std::vector<Word> product(const ExactValue& a, const ExactValue& b) {
    std::vector<Word> result(a.words.size() + b.words.size());
    mulB(result.data(), a.words.data(), a.words.size(), b.words.data(), b.words.size());
    while (result.back() == 0) result.pop_back();
    return result;
}

// The same fractions P/Q and R/Q, with nothing added.
void expect_same_fractions(const std::vector<ExactValue>& whole, const std::vector<ExactValue>& reduced) {
    EXPECT_EQ(product(whole[0], reduced[1]), product(reduced[0], whole[1]));
    EXPECT_EQ(product(whole[2], reduced[1]), product(reduced[2], whole[1]));
    EXPECT_LE(reduced[1].words.size(), whole[1].words.size());
}

TEST(CommonFactors, LeaveTheFractionsAsTheyAre) {
    for (const Candidate& candidate : candidates()) {
        CommonFactors factors(candidate.series->term_factors(), 123456 + 5000);
        for (const std::uint64_t terms : {63u, 64u, 127u, 128u, 129u, 300u, 1000u, 2048u, 2049u, 5000u}) {
            for (const std::uint64_t a : {0u, 1u, 123456u}) {
                SCOPED_TRACE(candidate.name + ": " + std::to_string(terms) + " behind " + std::to_string(a));
                const auto whole = sum(*candidate.series, a, a + terms, nullptr);
                const auto reduced = sum(*candidate.series, a, a + terms, &factors);
                expect_same_fractions(whole, reduced);
                if (terms <= 127) {
                    EXPECT_EQ(whole, reduced);
                }
            }
        }
    }
}

TEST(CommonFactors, LeaveTheFractionsOfLongRangesAsTheyAre) {
    for (const std::size_t i : {4, 6}) {
        const Candidate candidate = candidates()[i];
        SCOPED_TRACE(candidate.name);
        CommonFactors factors(candidate.series->term_factors(), 24000);
        const auto reduced = sum(*candidate.series, 0, 24000, &factors);
        // By transforms up to here, not where a few merges are left.
        EXPECT_GT(factors.divisor_words(5), 40u);
        EXPECT_EQ(factors.divisor_words(factors.level()), 0u);
        expect_same_fractions(sum(*candidate.series, 0, 24000, nullptr), reduced);
    }
}

TEST(CommonFactors, ShortenQAndROfTwoThousandTerms) {
    for (const Candidate& candidate : candidates()) {
        if (candidate.name == "ArcCoth(2^32 - 1)") continue;  // mostly x^2
        SCOPED_TRACE(candidate.name);
        CommonFactors factors(candidate.series->term_factors(), 102048);
        const auto whole = sum(*candidate.series, 100000, 102048, nullptr);
        const auto reduced = sum(*candidate.series, 100000, 102048, &factors);
        EXPECT_LT(reduced[1].words.size(), whole[1].words.size() * 90 / 100);
        EXPECT_LT(reduced[2].words.size(), whole[2].words.size() * 90 / 100);
    }
}

// What 64 and 128 consecutive indices have in common with the next ones, where a term is its index.
TEST(CommonFactors, OfIndicesAreFactorials) {
    CommonFactors factors(TermFactors{.R = {{1, 0}}, .Q = {{1, 0}}}, 1000);
    kelvara_test::TwiddledContext context(100, 100000);
    factors.prepare(context.context(), 511);
    EXPECT_EQ(factors.level(), 2);
    const auto odd_bits = [](double n) {
        double bits = 0, twos = 0;
        for (double i = 2; i <= n; i++) bits += std::log2(i);
        for (double i = n; i >= 1; i = std::floor(i / 2)) twos += std::floor(i / 2);
        return bits - twos;
    };
    const auto words = [](double bits) { return static_cast<std::uint64_t>(bits / 64) + 1; };
    EXPECT_EQ(factors.divisor_words(1), words(odd_bits(120)));
    EXPECT_EQ(factors.divisor_words(2), words(odd_bits(240) - odd_bits(120)));
    EXPECT_EQ(factors.divisor_words(3), 0u);
}

// A table serves ranges of all lengths, one after the other.
TEST(CommonFactors, ArePreparedAgainAndAgain) {
    const BSS_P2B3_Type0& series = kelvara::zeta3_formula(1).series;
    CommonFactors factors(series.term_factors(), 20000);
    for (const std::uint64_t terms : {200u, 3000u, 40u, 6000u, 3000u, 5999u, 200u}) {
        CommonFactors fresh(series.term_factors(), 20000);
        const auto expected = sum(series, 7000, 7000 + terms, &fresh);
        const auto reduced = sum(series, 7000, 7000 + terms, &factors);
        expect_same_fractions(expected, reduced);
        expect_same_fractions(sum(series, 7000, 7000 + terms, nullptr), reduced);
    }
}

// Terms beyond the last index are longer than what was prepared.
TEST(CommonFactors, RefuseIndicesBeyondTheLast) {
    const BSS_P2B3_Type0& series = kelvara::catalan_lupas_formula().series;
    CommonFactors factors(series.term_factors(), 100);
    const std::uint64_t a = 1000000000;
    EXPECT_THROW(sum(series, a, a + 6000, &factors), BufferTooSmallException);
}

// With every task count the same words: what is taken out depends on the range's length only. Its halves fit
// into halves of its memory, though the right one has the longer terms.
TEST(CommonFactors, DoNotDependOnTasks) {
    const auto frameworks = kelvara_test::frameworks();
    for (const Candidate& candidate : candidates()) {
        SCOPED_TRACE(candidate.name);
        CommonFactors factors(candidate.series->term_factors(), 5000);
        for (const auto& [a, b] : {std::pair(0u, 1000u), {0u, 4100u}, {500u, 4600u}}) {
            std::optional<std::vector<ExactValue>> first;
            for (const std::uint64_t tasks : {1u, 2u, 3u, 16u}) {
                const ParallelContext parallel(tasks, frameworks.front().get());
                const auto values = sum(*candidate.series, a, b, &factors, parallel, 1);
                if (!first) first = values;
                EXPECT_EQ(values, *first) << tasks;
            }
        }
    }
}

// A series whose factors are named wrongly is found out by the check of its block.
TEST(CommonFactors, ThatDivideNothingAreSeenByTheCheck) {
    const kelvara::ArcCothSeries series(26);
    CommonFactors wrong(TermFactors{.R = {{2, 1, 2}}, .Q = {{2, 1, 2}}}, 1200);
    EXPECT_ANY_THROW(sum(series, 1000, 1200, &wrong));
}

// The factors by formula against the numbers that the leaves make of them.
TEST(TermFactors, GiveTheTermsOfEverySeries) {
    for (const Candidate& candidate : candidates()) {
        SCOPED_TRACE(candidate.name);
        const TermFactors factors = candidate.series->term_factors();
        const auto value_at = [](const std::vector<TermFactor>& list, std::uint64_t k) {
            std::vector<Word> value = {1};
            for (const TermFactor& factor : list) {
                const Word w = factor.slope * k + static_cast<Word>(factor.offset);
                for (unsigned i = 0; i < factor.power; i++) {
                    Word carry = mul_word(value.data(), value.data(), value.size(), w);
                    if (carry) value.push_back(carry);
                }
            }
            return value;
        };
        for (const std::uint64_t k : {1u, 2u, 7u, 1000u, 1000003u}) {
            const auto term = sum(*candidate.series, k - 1, k, nullptr);
            EXPECT_EQ(term[1].words, value_at(factors.Q, k)) << k;
            EXPECT_EQ(term[2].words, value_at(factors.R, k)) << k;
        }
    }
}

}  // namespace
}  // namespace qmp
