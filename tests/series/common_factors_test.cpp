// Sums whose merges take common factors out, against those whose merges do not.
#include "series/common_factors.h"

#include <gtest/gtest.h>

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
                            const CommonFactors* factors) {
    PlannedBuffers<BSS_P2B3_Type0> planned(BSR_sizes(series, psr_size(series, a, b), 0, 1));
    const ParallelContext sequential = ParallelContext::sequential();
    const MultiplyContext context(sequential, &kelvara_test::shared_twiddles(), planned.scratch.data(),
                                  planned.scratch.words());
    BSR_block(series, context, nullptr, planned.buffers, a, b, 0, factors);
    planned.check();
    qcb_Verify_BSR(nullptr, a, b, {planned.buffers.data(), 3}, sequential);
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
        const CommonFactors factors(candidate.series->term_factors());
        for (const std::uint64_t terms : {127u, 128u, 129u, 300u, 1000u, 2048u, 2049u}) {
            for (const std::uint64_t a : {0u, 1u, 123456u}) {
                SCOPED_TRACE(candidate.name + ": " + std::to_string(terms) + " behind " + std::to_string(a));
                const auto whole = sum(*candidate.series, a, a + terms, nullptr);
                const auto reduced = sum(*candidate.series, a, a + terms, &factors);
                expect_same_fractions(whole, reduced);
                if (terms == 127) {
                    EXPECT_EQ(whole, reduced);
                }
            }
        }
    }
}

TEST(CommonFactors, ShortenQAndROfTwoThousandTerms) {
    for (const Candidate& candidate : candidates()) {
        if (candidate.name == "ArcCoth(2^32 - 1)") continue;  // mostly x^2
        SCOPED_TRACE(candidate.name);
        const CommonFactors factors(candidate.series->term_factors());
        const auto whole = sum(*candidate.series, 100000, 102048, nullptr);
        const auto reduced = sum(*candidate.series, 100000, 102048, &factors);
        EXPECT_LT(reduced[1].words.size(), whole[1].words.size() * 81 / 100);
        EXPECT_LT(reduced[2].words.size(), whole[2].words.size() * 81 / 100);
    }
}

TEST(CommonFactors, LeaveRangesBeyondTheirIndicesAsTheyAre) {
    const kelvara::ArcCothSeries series(2);
    const CommonFactors factors(series.term_factors());
    const std::uint64_t a = std::uint64_t{1} << 39;
    EXPECT_EQ(sum(series, a, a + 200, nullptr), sum(series, a, a + 200, &factors));
    // And up to there not.
    EXPECT_NE(sum(series, a - 200, a, nullptr), sum(series, a - 200, a, &factors));
    expect_same_fractions(sum(series, a - 100, a + 100, nullptr), sum(series, a - 100, a + 100, &factors));
}

// With every task count the same words: what is taken out depends on the splits only.
TEST(CommonFactors, DoNotDependOnTasks) {
    const BSS_P2B3_Type0& series = kelvara::catalan_lupas_formula().series;
    const CommonFactors factors(series.term_factors());
    const auto frameworks = kelvara_test::frameworks();
    const std::uint64_t a = 500, b = 4600;
    std::optional<std::vector<ExactValue>> first;
    for (const std::uint64_t tasks : {1u, 2u, 3u, 16u}) {
        const ParallelContext parallel(tasks, frameworks.front().get());
        PlannedBuffers<BSS_P2B3_Type0> planned(BSR_sizes(series, psr_size(series, a, b), 1, tasks));
        const MultiplyContext context(parallel, &kelvara_test::shared_twiddles(), planned.scratch.data(),
                                      planned.scratch.words());
        BSR_block(series, context, nullptr, planned.buffers, a, b, 1, &factors);
        planned.check();
        if (!first) first = planned.values();
        EXPECT_EQ(planned.values(), *first) << tasks;
    }
}

// A series whose factors are named wrongly is found out by the check of its block.
TEST(CommonFactors, ThatDivideNothingAreSeenByTheCheck) {
    const kelvara::ArcCothSeries series(26);
    const CommonFactors wrong(TermFactors{.R = {{2, 1, 2}}, .Q = {{2, 1, 2}}});
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
