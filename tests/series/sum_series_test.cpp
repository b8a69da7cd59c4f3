// Plans evaluated block by block, and series driven to their values.
#include "series/sum_series.h"

#include <gtest/gtest.h>

#include "constants/pi_formulas.h"
#include "constants/size_rules.h"
#include "errors/exception.h"
#include "numbers/division_driver.h"
#include "series/test_series.h"
#include "support/computation_memory.h"
#include "support/hexadecimal_fraction.h"
#include "support/reference_digits.h"

namespace qmp {
namespace {

using kelvara_test::ArcCothSeries;
using kelvara_test::ComputationMemory;
using kelvara_test::hex_fraction;
using kelvara_test::hex_tail;
using kelvara_test::LogSeries;
using kelvara_test::reference_digits;
using kelvara_test::ReferenceDigits;

// The fractional digits of a series' value, and the memory it took checked against the estimate.
template <typename Series>
std::string digits_of(const Series& series, std::uint64_t p, ParallelContext parallel, Word w, Word d,
                      std::int64_t scale, std::uint64_t digits, std::uint8_t sign = 1) {
    const std::uint64_t estimate = memory_estimate(series, p, parallel.tds);
    ComputationMemory memory(estimate, sum_largest_product(series, p));
    SilentProgress progress;
    const OwnedBigFloat value = SumSeries(series, memory.context(parallel, &progress), p, w, d, scale);
    value.check();
    EXPECT_EQ(value.number.sign, sign);
    EXPECT_LE(memory.region().peak_bytes(), estimate + (std::uint64_t{1} << 20));
    EXPECT_EQ(memory.region().count(), 1u);
    // What a computation leaves behind lies at the region's start.
    EXPECT_LT(memory.region().used_bytes(), 8 * (p + 3) + checked_array_overhead(64));
    return hex_fraction(value.number, 0, digits);
}

TEST(SumSeries, LogarithmOfTwo) {
    for (const std::uint64_t decimal : {100u, 1000u, 10000u}) {
        const ReferenceDigits reference = reference_digits("log(2)", decimal);
        const std::uint64_t p = kelvara::precision_for_digits(decimal);
        const std::string digits =
            digits_of(LogSeries(false), p, ParallelContext::sequential(), 0, 1, 1, reference.hex_digits);
        EXPECT_EQ(digits.substr(digits.size() - 50), reference.hex_last50);
    }
}

// ln(3/2) = 1/2 - 1/8 + ... from the alternating form, against ln 3 - ln 2 from ArcCoth.
TEST(SumSeries, AlternatingTermsAreSubtracted) {
    const std::uint64_t p = 100;
    const std::uint64_t digits = 16 * p;
    // 2 ArcCoth(5) = ln(6/4).
    const std::string by_arccoth =
        digits_of(ArcCothSeries(5), p, ParallelContext::sequential(), 1, 5, 2, digits);
    // The driver takes the first summed term of an alternating series as negative: w Q - P with w = 1 is
    // 1 - ln(3/2).
    const std::string complement =
        digits_of(LogSeries(true), p, ParallelContext::sequential(), 1, 1, 1, digits);
    for (std::size_t i = 0; i < digits; i++) {
        const auto value = [](char c) { return c <= '9' ? c - '0' : c - 'a' + 10; };
        ASSERT_EQ(value(by_arccoth[i]) + value(complement[i]), 15) << i;
    }
}

TEST(SumSeries, ArcCothOfTwoWithEveryTaskCount) {
    const std::uint64_t decimal = 10000;
    const ReferenceDigits reference = reference_digits("arccoth(2)", decimal);
    const std::uint64_t p = kelvara::precision_for_digits(decimal);
    const auto all = kelvara_test::frameworks();
    for (const auto& framework : all) {
        for (const std::uint64_t tasks : {1u, 2u, 3u, 7u, 16u, 64u}) {
            const std::string digits =
                digits_of(ArcCothSeries(2), p, {tasks, framework.get()}, 1, 2, 1, reference.hex_digits);
            EXPECT_EQ(digits.substr(digits.size() - 50), reference.hex_last50) << tasks;
        }
    }
}

TEST(SumSeries, ScaleAndSign) {
    const std::uint64_t p = 50;
    const ParallelContext parallel = ParallelContext::sequential();
    const std::string log2 = digits_of(LogSeries(false), p, parallel, 0, 1, 1, 16 * p);
    EXPECT_EQ(digits_of(LogSeries(false), p, parallel, 0, 1, -1, 16 * p, 0), log2);
    // 4 = 2^2 moves the digits by half a hexadecimal digit; 16 by one.
    EXPECT_EQ(digits_of(LogSeries(false), p, parallel, 0, 1, 16, 16 * p - 16), log2.substr(1, 16 * p - 16));
    EXPECT_EQ(digits_of(LogSeries(false), p, parallel, 0, 16, 1, 16 * p - 16),
              "0" + log2.substr(0, 16 * p - 17));
    // 3 + log 2 and the same over 1.
    EXPECT_EQ(digits_of(LogSeries(false), p, parallel, 3, 1, 1, 16 * p), log2);
}

// One block, two, many; blocks with both depths; term counts on both sides of the planner's limit.
TEST(SumSeries, AgreesAcrossPrecisions) {
    const ParallelContext parallel = ParallelContext::sequential();
    const std::string longest = digits_of(LogSeries(false), 400, parallel, 0, 1, 1, 16 * 400);
    for (std::uint64_t p = 1; p < 390; p += p / 7 + 1) {
        EXPECT_EQ(digits_of(LogSeries(false), p, parallel, 0, 1, 1, 16 * p), longest.substr(0, 16 * p)) << p;
    }
    const std::string pi_sum =
        digits_of(kelvara::pi_formula(0).series, 3000, parallel, 13591409, 1, 1, 16 * 3000);
    for (const std::uint64_t p : {1u, 7u, 100u, 734u, 735u, 736u, 737u, 738u, 740u, 1000u, 2000u}) {
        EXPECT_EQ(digits_of(kelvara::pi_formula(0).series, p, parallel, 13591409, 1, 1, 16 * (p - 1)),
                  pi_sum.substr(0, 16 * (p - 1)))
            << p;
    }
}

// With half the cap, and in the middle of a plan.
TEST(Psr, FactorAndFirstBlock) {
    const BSS_P2B3_Type0& series = kelvara::pi_formula(0).series;
    const std::uint64_t p = 2000;
    SilentProgress progress;
    const ComputeContext context = {ParallelContext::sequential(), &kelvara_test::shared_twiddles(), nullptr,
                                    &progress};
    const auto quotient = [&](double factor, std::uint64_t from) {
        const PsrPlan plan = build_psr_plan(series, p, factor);
        std::uint64_t first = 0;
        while (plan.blocks[first].a < from) first++;
        PsrMemory memory(context, series.SizesForPlan(plan, first, 1));
        BigFloat P;
        BigFloat Q;
        B_PSR(series, context.multiply(memory.scratch), &progress, plan, first, memory, P, Q);
        for (const CheckedWords& buffer : memory.exact) buffer.check();
        for (const CheckedWords& buffer : memory.running) buffer.check();
        memory.scratch.check();
        const OwnedBigFloat value = divide(context, P, Q, plan.blocks[first].precision_at_a);
        return std::pair(hex_fraction(value.number, 0, 16 * plan.blocks[first].precision_at_a), first);
    };
    const auto whole = quotient(1.0, 0);
    const auto half = quotient(0.5, 0);
    EXPECT_EQ(whole.first.substr(0, 16 * p), half.first.substr(0, 16 * p));
    // From a later block on, the sum is the one of exactly those terms.
    const auto [tail, first] = quotient(1.0, 1);
    EXPECT_GT(first, 0u);
    const PsrPlan plan = build_psr_plan(series, p, 1.0);
    const std::uint64_t a = plan.blocks[first].a;
    const auto exact = kelvara_test::block_sum(series, ParallelContext::sequential(), a, plan.terms,
                                               psr_size(series, a, plan.terms), 0);
    const BigFloatView P = {exact[0].words.data(), exact[0].words.size(), exact[0].exp, 1};
    const BigFloatView Q = {exact[1].words.data(), exact[1].words.size(), exact[1].exp, 1};
    const OwnedBigFloat value = divide(context, P, Q, plan.blocks[first].precision_at_a);
    const std::size_t digits = 16 * (plan.blocks[first].precision_at_a - 2);
    EXPECT_EQ(tail.substr(0, digits), hex_fraction(value.number, 0, digits));
}

TEST(Psr, BuffersTooSmallNameTheFamily) {
    SilentProgress progress;
    const ComputeContext context = {ParallelContext::sequential(), &kelvara_test::shared_twiddles(), nullptr,
                                    &progress};
    const auto expect_name = [&](const auto& series, const char* name) {
        const PsrPlan plan = build_psr_plan(series, 100, 1.0);
        PlanSizes sizes = series.SizesForPlan(plan, 0, 1);
        sizes.exact_words = (sizes.exact_words & ~std::uint64_t{7}) - 8;
        PsrMemory memory(context, sizes);
        BigFloat P;
        BigFloat Q;
        try {
            B_PSR(series, context.multiply(memory.scratch), &progress, plan, 0, memory, P, Q);
            FAIL();
        } catch (const BufferTooSmallException& e) {
            EXPECT_EQ(e.function(), name);
            EXPECT_EQ(e.buffer_size() + 16, e.required_size());
        }
    };
    expect_name(LogSeries(false), "BSS_P2B2_BBP::B_PSR()");
    expect_name(kelvara::pi_formula(0).series, "BSS_P2B3_Type0::B_PSR()");
}

// What a summation says while it runs.
class Recording final : public Progress {
  public:
    void begin_step(std::string_view title, std::string_view status) override {
        log.push_back("begin " + std::string(title) + "|" + std::string(status));
    }
    void note(std::string_view text, console::Colour) override { log.push_back("note " + std::string(text)); }
    void push_label(std::string_view text, console::Colour) override { labels.emplace_back(text); }
    void pop_label() override { pops++; }
    void end_step() override { log.push_back("end"); }
    void message(std::string_view text, console::Colour) override { log.push_back(std::string(text)); }
    std::vector<std::string> log;
    std::vector<std::string> labels;
    std::size_t pops = 0;
};

TEST(SumSeries, ReportsItsSteps) {
    Recording progress;
    const ComputeContext context = {ParallelContext::sequential(), &kelvara_test::shared_twiddles(), nullptr,
                                    &progress};
    SumSeries(kelvara::pi_formula(0).series, context, 1000, 13591409, 1, 1);
    const std::vector<std::string> steps = {"begin Summing Series...  |Summing Series",
                                            "note Summing: 1,360 terms", "end", "begin Division...|Division",
                                            "end"};
    EXPECT_EQ(progress.log, steps);
    EXPECT_EQ(progress.labels.size(), progress.pops);
    const std::size_t blocks = build_psr_plan(kelvara::pi_formula(0).series, 1000, 1.0).blocks.size();
    EXPECT_EQ(progress.labels[0],
              "Series: " + std::to_string(blocks - 1) + " ( 0 / " + std::to_string(blocks) + " )  ");
    EXPECT_NE(std::find(progress.labels.begin(), progress.labels.end(), "Finishing Series"),
              progress.labels.end());
}

TEST(SumSeries, ASeriesBeyondTheTable) {
    try {
        memory_estimate(kelvara::pi_formula(0).series, std::uint64_t{1} << 58, 1);
        FAIL();
    } catch (const LimitExceededException& e) {
        EXPECT_EQ(e.function(), "AlgorithmTableB::iPsize()");
    }
}

}  // namespace
}  // namespace qmp
