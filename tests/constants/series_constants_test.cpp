// ArcCoth, Zeta(3), the lemniscate constant and Catalan's constant by all their algorithms: digits, memory,
// names, steps.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "constants/arccoth_series.h"
#include "constants/catalan_huvent.h"
#include "constants/catalan_lupas.h"
#include "constants/catalogue.h"
#include "constants/lemniscate_series.h"
#include "constants/zeta3_series.h"
#include "multiply/multiply.h"
#include "platform/parallel/registry.h"
#include "series/psr_plan.h"
#include "series/series_sizes.h"
#include "series/sum_series.h"
#include "support/computation_memory.h"
#include "support/hexadecimal_fraction.h"
#include "support/reference_digits.h"
#include "support/sanitized.h"
#ifdef KELVARA_HAVE_GMP
#include <gmp.h>
#endif

namespace kelvara {
namespace {

using kelvara_test::ComputationMemory;
using kelvara_test::hex_fraction;
using kelvara_test::reference_digits;
using kelvara_test::ReferenceDigits;
using qmp::ParallelContext;

struct Algorithm {
    ConstantId id;
    std::uint64_t argument;  // 0: none
    const char* keyword;
    const char* reference;  // in the reference digits; null: none
    qmp::Word integer_part;
};

constexpr Algorithm algorithms[] = {
    {id_arccoth, 2, "series", "arccoth(2)", 0},
    {id_arccoth, 4294967295, "series", "arccoth(4294967295)", 0},
    {id_zeta3, 0, "az-long", "zeta(3)", 1},
    {id_zeta3, 0, "az-short", "zeta(3)", 1},
    {id_lemniscate, 0, "gauss", "lemniscate", 5},
    {id_lemniscate, 0, "sebah", "lemniscate", 5},
    {id_catalan, 0, "lupas", "catalan", 0},
    {id_catalan, 0, "huvent", "catalan", 0},
};

std::unique_ptr<RamComputation> computation(const Algorithm& algorithm, std::uint64_t p,
                                            std::uint64_t tasks) {
    const auto constant = make_constant(algorithm.id);
    if (algorithm.argument) constant->set_argument(algorithm.argument);
    constant->set_algorithm_keyword(algorithm.keyword);
    constant->set_size(p);
    auto made = constant->make_ram_computation(tasks);
    EXPECT_EQ(made->precision(), p);
    EXPECT_EQ(made->tasks(), tasks ? tasks : 1);
    return made;
}

// Computes in a region that holds no more than the estimate and a session's reserve, with twiddle tables for
// no longer products than announced.
std::string digits_of(const RamComputation& made, ParallelContext parallel, std::uint64_t digits,
                      qmp::Word integer_part) {
    ComputationMemory memory(made.working_bytes(), made.largest_product());
    qmp::SilentProgress progress;
    const qmp::OwnedBigFloat value = made.compute(memory.context(parallel, &progress));
    value.check();
    EXPECT_LE(memory.region().peak_bytes(), made.working_bytes() + (std::uint64_t{1} << 20));
    EXPECT_EQ(memory.region().count(), 1u);
    EXPECT_LE(memory.region().used_bytes(), 8 * (made.precision() + 7) + qmp::checked_array_overhead(64));
    EXPECT_LE(value.number.L, made.precision() + 3);
    EXPECT_EQ(value.number.sign, 1);
    EXPECT_EQ(value.number.top() == 1 ? value.number.T[value.number.L - 1] : 0, integer_part);
    EXPECT_LE(value.number.top(), 1);
    return hex_fraction(value.number, 0, digits);
}

TEST(SeriesConstants, EqualTheReferenceDigits) {
    for (const Algorithm& a : algorithms) {
        for (const std::uint64_t decimal : {100u, 1000u, 10000u}) {
            const ReferenceDigits reference = reference_digits(a.reference, decimal);
            const auto made = computation(a, precision_for_digits(decimal), 1);
            const std::string digits =
                digits_of(*made, ParallelContext::sequential(), reference.hex_digits, a.integer_part);
            EXPECT_EQ(digits.substr(digits.size() - 50), reference.hex_last50)
                << a.reference << ", " << a.keyword << ", " << decimal;
        }
    }
}

// Two routes to a constant agree in every digit of sizes in between, around those where a plan gets another
// block.
TEST(SeriesConstants, AlgorithmsAgree) {
    for (const std::uint64_t p : {1u, 2u, 3u, 9u, 10u, 11u, 57u, 100u, 734u, 740u, 1500u, 3000u}) {
        for (std::size_t i = 2; i < std::size(algorithms); i += 2) {
            std::string digits[2];
            for (std::size_t j = 0; j < 2; j++) {
                const Algorithm& a = algorithms[i + j];
                digits[j] = digits_of(*computation(a, p, 1), ParallelContext::sequential(), 16 * p - 4,
                                      a.integer_part);
            }
            EXPECT_EQ(digits[0], digits[1]) << algorithms[i].reference << ", " << p << " words";
        }
    }
}

TEST(SeriesConstants, AlgorithmsAgreeInAMillionDigits) {
    if (kelvara_test::sanitized) GTEST_SKIP() << "too slow under sanitizers";
    const std::uint64_t p = precision_for_digits(1'000'000);
    const auto framework = qmp::make_parallelizer("pushpool");
    for (std::size_t i = 2; i < std::size(algorithms); i += 2) {
        std::string digits[2];
        for (std::size_t j = 0; j < 2; j++) {
            const Algorithm& a = algorithms[i + j];
            digits[j] = digits_of(*computation(a, p, 2), {2, framework.get()}, 16 * p - 4, a.integer_part);
        }
        EXPECT_TRUE(digits[0] == digits[1]) << algorithms[i].reference;
    }
}

TEST(SeriesConstants, TasksAndFrameworksDoNotMatter) {
    for (const Algorithm& a : algorithms) {
        const std::uint64_t p = precision_for_digits(10000);
        const std::string expected =
            digits_of(*computation(a, p, 1), ParallelContext::sequential(), 16 * p - 4, a.integer_part);
        for (const std::string& key : qmp::parallelizer_keys()) {
            const auto framework = qmp::make_parallelizer(key);
            for (const std::uint64_t tasks : {1u, 2u, 3u, 16u}) {
                EXPECT_EQ(digits_of(*computation(a, p, tasks), {tasks, framework.get()}, 16 * p - 4,
                                    a.integer_part),
                          expected)
                    << a.reference << ", " << a.keyword << ", " << tasks << " tasks, "
                    << framework->get_type_name();
            }
        }
    }
}

#ifdef KELVARA_HAVE_GMP

// The hexadecimal digits behind the point of ArcCoth(x), by its series in integers.
std::string arccoth_digits(std::uint64_t x, std::uint64_t digits) {
    const mp_bitcnt_t bits = 4 * digits + 64;
    mpz_t power, sum, term;
    mpz_inits(power, sum, term, nullptr);
    mpz_setbit(power, bits);
    mpz_tdiv_q_ui(power, power, x);
    for (std::uint64_t k = 0; mpz_sgn(power) != 0; k++) {
        mpz_tdiv_q_ui(term, power, 2 * k + 1);
        mpz_add(sum, sum, term);
        mpz_tdiv_q_ui(power, power, x);
        mpz_tdiv_q_ui(power, power, x);
    }
    mpz_tdiv_q_2exp(sum, sum, 64);
    std::string text(mpz_sizeinbase(sum, 16) + 2, '\0');
    mpz_get_str(text.data(), 16, sum);
    text.resize(std::char_traits<char>::length(text.c_str()));
    mpz_clears(power, sum, term, nullptr);
    return std::string(digits - text.size(), '0') + text;
}

// The ends of the range, a square of one word and of half a word, and where the large kernel begins.
TEST(SeriesConstants, ArcCothOfEveryKindOfArgument) {
    for (const std::uint64_t x :
         {2u, 3u, 26u, 1023u, 65535u, 65536u, 65537u, 4801u, 2147483648u, 4294967295u}) {
        const Algorithm a = {id_arccoth, x, "series", nullptr, 0};
        for (const std::uint64_t p : {3u, 60u, 700u}) {
            const std::uint64_t digits = 16 * p - 16;
            EXPECT_EQ(digits_of(*computation(a, p, 1), ParallelContext::sequential(), digits, 0),
                      arccoth_digits(x, digits))
                << x << ", " << p << " words";
        }
    }
}

#endif

// A negative multiple is the multiple with the other sign.
TEST(SeriesConstants, MultiplesOfArcCoth) {
    qmp::SilentProgress progress;
    const auto multiple = [&](std::int64_t c) {
        ComputationMemory memory(qmp::memory_estimate(ArcCothSeries(26), 100, 1), 10000);
        const qmp::OwnedBigFloat value =
            sum_arccoth(memory.context(ParallelContext::sequential(), &progress), 26, c, 100);
        EXPECT_EQ(value.number.sign, c > 0);
        return std::pair(hex_fraction(value.number, 0, 1500), value.number.top());
    };
    EXPECT_EQ(multiple(18), multiple(-18));
    EXPECT_NE(multiple(18), multiple(17));
    EXPECT_EQ(multiple(1).second, 0);
    EXPECT_EQ(multiple(-26).second, 1);
}

TEST(SeriesConstants, Names) {
    struct Row {
        Algorithm algorithm;
        const char* short_name;
        const char* long_name;
    };
    const Row rows[] = {
        {algorithms[0], "Taylor", "Taylor Series"},
        {algorithms[2], "AZ (long)", "Amdeberhan-Zeilberger (long)"},
        {algorithms[3], "AZ (short)", "Amdeberhan-Zeilberger (short)"},
        {algorithms[4], "Gauss", "Gauss Formula"},
        {algorithms[5], "Sebah", "Sebah's formula"},
        {algorithms[6], "Lupas", "Lupas Formula"},
        {algorithms[7], "Huvent", "Huvent's Formula"},
    };
    for (const Row& row : rows) {
        const auto made = computation(row.algorithm, 10, 0);
        EXPECT_STREQ(made->short_name(), row.short_name);
        EXPECT_STREQ(made->long_name(), row.long_name);
    }
}

// The figure of screens for one series, by its formula.
std::uint64_t shown_estimate(const qmp::BinarySplittingSeries& series, std::uint64_t p, std::uint64_t t) {
    const qmp::PlanSizes sizes = series.SizesForPlan(qmp::build_psr_plan(series, p, 1.0), 0, t);
    const std::uint64_t d = p + 110 + ((p + 101) & ~std::uint64_t{1});
    const std::uint64_t summing =
        sizes.scratch_bytes + 2 * (8 * sizes.running_words + 16 * sizes.exact_words);
    const std::uint64_t dividing =
        qmp::iPsize(p + 103, t) + 2 * (8 * sizes.running_words + 4 * d + 8 * sizes.exact_words);
    return std::max(summing, dividing);
}

TEST(SeriesConstants, EstimatesFollowTheirFormulas) {
    for (const std::uint64_t p : {7u, 54u, 521u, 3000u}) {
        for (const std::uint64_t t : {1u, 2u, 5u}) {
            const std::uint64_t expected[] = {
                shown_estimate(ArcCothSeries(2), p, t),
                shown_estimate(ArcCothSeries(4294967295), p, t),
                shown_estimate(zeta3_formula(0).series, p, t),
                shown_estimate(zeta3_formula(1).series, p, t),
                shown_estimate(ArcSinlemnSeries({1, 2}), p, t) + 8 * p,
                shown_estimate(ArcSinlemnSeries({2, 3}), p, t) + 8 * p,
                shown_estimate(catalan_lupas_formula().series, p, t),
                shown_estimate(catalan_huvent_series(), p, t),
            };
            for (std::size_t i = 0; i < std::size(algorithms); i++) {
                const auto made = computation(algorithms[i], p, t);
                EXPECT_EQ(made->memory_estimate(), expected[i])
                    << algorithms[i].keyword << ' ' << algorithms[i].argument << ", " << p << ", " << t;
                EXPECT_GE(made->working_bytes(), made->memory_estimate());
            }
        }
    }
}

// The lines that a computation puts out, each step ended before the next begins.
class Steps final : public qmp::SilentProgress {
  public:
    void begin_step(std::string_view title, std::string_view status) override {
        EXPECT_FALSE(inside_);
        inside_ = true;
        lines.push_back(std::string(title) + "|" + std::string(status));
    }
    void heading(std::string_view text) override {
        EXPECT_FALSE(inside_);
        lines.push_back(std::string(text) + ":");
    }
    void note(std::string_view text, qmp::console::Colour) override { lines.push_back(std::string(text)); }
    void end_step() override {
        EXPECT_TRUE(inside_);
        inside_ = false;
    }
    std::vector<std::string> lines;

  private:
    bool inside_ = false;
};

TEST(SeriesConstants, Steps) {
    using Lines = std::vector<std::string>;
    const auto one_series = [](const char* terms) {
        return Lines{"Summing Series...  |Summing Series", std::string("Summing: ") + terms + " terms",
                     "Division...|Division"};
    };
    const auto two_series = [&](const char* first, const char* first_terms, const char* second,
                                const char* second_terms) {
        Lines lines = {first};
        for (const std::string& line : one_series(first_terms)) lines.push_back(line);
        lines.emplace_back(second);
        for (const std::string& line : one_series(second_terms)) lines.push_back(line);
        return lines;
    };
    // 1000 words are 44361.4 units of the natural logarithm. Where terms shrink by a power of two, the count
    // is half a term off a whole number, and what is rounded lies just below.
    const Lines expected[] = {
        one_series("32,001"),
        one_series("1,002"),
        one_series("3,821"),
        one_series("6,401"),
        two_series("8 * ArcSinlemn( 1 / 2 ):", "16,001", "4 * ArcSinlemn( 7 / 23 ):", "9,324"),
        two_series("8 * ArcSinlemn( 2 / 3 ):", "27,354", "-4 * ArcSinlemn( 7 / 137 ):", "3,731"),
        one_series("32,001"),
        one_series("10,668"),
    };
    for (std::size_t i = 0; i < std::size(algorithms); i++) {
        const auto made = computation(algorithms[i], 1000, 1);
        ComputationMemory memory(made->working_bytes(), made->largest_product());
        Steps steps;
        made->compute(memory.context(ParallelContext::sequential(), &steps));
        EXPECT_EQ(steps.lines, expected[i]) << algorithms[i].keyword;
    }
}

}  // namespace
}  // namespace kelvara
