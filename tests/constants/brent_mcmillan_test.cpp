// The Euler-Mascheroni constant: digits by both methods, the parameter, memory, steps.
#include "constants/brent_mcmillan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "console/format.h"
#include "constants/arccoth_series.h"
#include "constants/catalogue.h"
#include "constants/euler_gamma.h"
#include "errors/exception.h"
#include "multiply/multiply.h"
#include "platform/parallel/registry.h"
#include "series/series_sizes.h"
#include "series/sum_series.h"
#include "support/computation_memory.h"
#include "support/console.h"
#include "support/hexadecimal_fraction.h"
#include "support/reference_digits.h"

namespace kelvara {
namespace {

using kelvara_test::ComputationMemory;
using kelvara_test::hex_fraction;
using kelvara_test::printed_by;
using kelvara_test::reference_digits;
using qmp::ParallelContext;
using qmp::Word;

constexpr const char* methods[] = {"brent-refined", "brent-original"};

std::unique_ptr<RamComputation> gamma_by(const char* method, std::uint64_t p, std::uint64_t tasks) {
    const auto constant = make_constant(id_euler_gamma);
    constant->set_algorithm_keyword(method);
    constant->set_size(p);
    return constant->make_ram_computation(tasks);
}
std::unique_ptr<RamComputation> gamma_with(std::uint64_t k, const char* method, std::uint64_t p) {
    const auto constant = make_constant(id_euler_gamma_override);
    constant->set_algorithm_keyword(method);
    constant->set_argument(k);
    constant->set_size(p);
    return constant->make_ram_computation(1);
}

// In a region that holds no more than was promised.
std::string digits_of(const RamComputation& made, ParallelContext parallel, std::uint64_t digits,
                      qmp::Progress* observer = nullptr) {
    ComputationMemory memory(made.working_bytes(), made.largest_product());
    qmp::SilentProgress silent;
    const qmp::OwnedBigFloat value = made.compute(memory.context(parallel, observer ? observer : &silent));
    value.check();
    EXPECT_LE(memory.region().peak_bytes(), made.working_bytes() + (std::uint64_t{1} << 20));
    EXPECT_EQ(memory.region().count(), 1u);
    EXPECT_LE(memory.region().used_bytes(), 8 * (made.precision() + 7) + qmp::checked_array_overhead(64));
    EXPECT_LE(value.number.L, made.precision() + 3);
    EXPECT_EQ(value.number.sign, 1);
    EXPECT_EQ(value.number.top(), 0);
    return hex_fraction(value.number, 0, digits);
}

TEST(BrentMcMillan, EqualsTheReferenceDigits) {
    for (const char* method : methods) {
        for (const std::uint64_t decimal : {100u, 1000u, 10000u}) {
            const auto reference = reference_digits("gamma", decimal);
            std::string digits;
            EXPECT_EQ(printed_by([&] {
                          digits = digits_of(*gamma_by(method, precision_for_digits(decimal), 1),
                                             ParallelContext::sequential(), reference.hex_digits);
                      }),
                      "");
            EXPECT_EQ(digits.substr(digits.size() - 50), reference.hex_last50) << method << ", " << decimal;
        }
    }
}

// Both methods, and other parameters that suffice, at sizes in between.
TEST(BrentMcMillan, MethodsAndParametersAgree) {
    for (const std::uint64_t p : {1u, 2u, 3u, 9u, 10u, 31u, 100u, 735u, 1100u}) {
        const std::uint64_t digits = 16 * p - 4;
        const std::uint32_t k = brent_mcmillan_exponent(p);
        const std::string expected =
            digits_of(*gamma_by(methods[0], p, 1), ParallelContext::sequential(), digits);
        EXPECT_EQ(digits_of(*gamma_by(methods[1], p, 1), ParallelContext::sequential(), digits), expected)
            << p;
        for (const char* method : methods) {
            EXPECT_EQ(digits_of(*gamma_with(k + 1, method, p), ParallelContext::sequential(), digits),
                      expected)
                << method << ", " << p;
        }
    }
}

TEST(BrentMcMillan, TasksDoNotMatter) {
    const std::uint64_t p = precision_for_digits(10000);
    const auto framework = qmp::make_parallelizer("pushpool");
    for (const char* method : methods) {
        const std::string one =
            digits_of(*gamma_by(method, p, 1), ParallelContext::sequential(), 16 * p + 16);
        for (const std::uint64_t tasks : {2u, 16u}) {
            EXPECT_EQ(digits_of(*gamma_by(method, p, tasks), {tasks, framework.get()}, 16 * p + 16), one)
                << method << ", " << tasks;
        }
    }
}

TEST(BrentMcMillan, Names) {
    for (const auto& constant : {make_constant(id_euler_gamma), make_constant(id_euler_gamma_override)}) {
        constant->set_algorithm(0);
        EXPECT_STREQ(constant->make_ram_computation(1)->short_name(), "Brent-McMillan (refined)");
        EXPECT_STREQ(constant->make_ram_computation(1)->long_name(), "Brent-McMillan with Refinement");
        constant->set_algorithm(1);
        EXPECT_STREQ(constant->make_ram_computation(0)->short_name(), "Brent-McMillan");
        EXPECT_STREQ(constant->make_ram_computation(0)->long_name(), "Brent-McMillan");
        EXPECT_EQ(constant->make_ram_computation(0)->tasks(), 1u);
    }
}

TEST(BrentMcMillan, EstimatesFollowTheirFormula) {
    for (const std::uint64_t p : {1u, 54u, 521u, 3000u}) {
        for (const std::uint64_t t : {1u, 2u, 5u}) {
            for (const char* method : methods) {
                const bool refined = method == methods[0];
                const auto e = static_cast<std::int32_t>(brent_mcmillan_exponent(p)) - (refined ? 1 : 0);
                const qmp::Series_EulerGamma_BM_AB series(e);
                const qmp::PsrPlan plan = qmp::build_psr_plan(series, p, 1.0);
                const qmp::PlanSizes sizes = series.SizesForPlan(plan, 0, t);
                const std::uint64_t a =
                    sizes.scratch_bytes + 3 * (16 * sizes.exact_words + 8 * sizes.running_words);
                const std::uint64_t s = p + 100;
                const std::uint64_t d = p + 110 + ((p + 101) & ~std::uint64_t{1});
                const std::uint64_t b =
                    16 * sizes.exact_words + 8 * s + qmp::iPsize(p + 103, t) + 8 * (d + 2);
                EXPECT_EQ(gamma_by(method, p, t)->memory_estimate(), std::max(a, b)) << p << ", " << t;
            }
        }
    }
}

// n = 1 and n = 1/2: few digits are right, and these are the method's own.
TEST(BrentMcMillan, TheSmallestParameters) {
    const auto method = [](double n, bool refined) {
        double term = 1;
        double harmonic = 0;
        double A = 0;
        double B = 1;
        for (int k = 1; k < 60; k++) {
            term *= n * n / (static_cast<double>(k) * k);
            harmonic += 1.0 / k;
            A += term * harmonic;
            B += term;
        }
        double C = 1;
        double c_term = 1;
        for (int k = 1; k <= static_cast<int>(2 * n); k++) {
            c_term *= std::pow(2.0 * k - 1, 3) / (32 * n * n * k);
            C += c_term;
        }
        return A / B - (refined ? C / (4 * n) / (B * B) : 0) - std::log(n);
    };
    const auto value = [](const RamComputation& made) {
        ComputationMemory memory(made.working_bytes(), made.largest_product());
        qmp::SilentProgress progress;
        qmp::OwnedBigFloat x;
        const std::string text =
            printed_by([&] { x = made.compute(memory.context(ParallelContext::sequential(), &progress)); });
        EXPECT_NE(text.find("too small"), std::string::npos);
        EXPECT_EQ(x.number.sign, 1);
        return std::ldexp(static_cast<double>(x.number.T[x.number.L - 1]),
                          static_cast<int>(64 * (x.number.top() - 1)));
    };
    for (const std::uint64_t p : {7u, 60u}) {
        EXPECT_NEAR(value(*gamma_with(0, "brent-original", p)), method(1, false), 1e-12);
        EXPECT_NEAR(value(*gamma_with(0, "brent-refined", p)), method(0.5, true), 1e-12);
        EXPECT_NEAR(value(*gamma_with(1, "brent-refined", p)), method(1, true), 1e-12);
        EXPECT_NEAR(value(*gamma_with(2, "brent-original", p)), method(4, false), 1e-12);
    }
}

TEST(BrentMcMillan, WarnsOfTooSmallAParameter) {
    const auto warning_of = [](std::uint64_t k, const char* method) {
        const auto made = gamma_with(k, method, 60);
        ComputationMemory memory(made->working_bytes(), made->largest_product());
        qmp::SilentProgress progress;
        return printed_by([&] { made->compute(memory.context(ParallelContext::sequential(), &progress)); });
    };
    // 60 words are 1,155.95... digits; 4 * 2^9 units of the natural logarithm 889.43..., and 8 * 2^8 as many.
    const std::string text =
        "Warning:\nThe current parameter is too small to meet the target precision.\n"
        "Target: 1155\nLimit:  889\n\n";
    EXPECT_EQ(warning_of(9, "brent-original"), text);
    EXPECT_EQ(warning_of(9, "brent-refined"), text);
    EXPECT_EQ(warning_of(10, "brent-original"), "");
    EXPECT_EQ(warning_of(10, "brent-refined"), "");
}

TEST(BrentMcMillan, RefusesParametersThatMakeNoPlan) {
    for (const std::uint64_t k : {30u, 50u, 62u, 63u}) {
        for (const char* method : methods) {
            const std::uint64_t exponent = method == methods[0] ? k - 1 : k;
            try {
                gamma_with(k, method, 7);
                ADD_FAILURE() << k;
            } catch (const qmp::InvalidParametersException& e) {
                EXPECT_EQ(e.message(),
                          "The parameter n = 2^" + std::to_string(exponent) + " is too large for this size.");
            }
        }
    }
}

// Steps, notes and headings, in order.
class Steps final : public qmp::SilentProgress {
  public:
    void begin_step(std::string_view title, std::string_view) override { lines.emplace_back(title); }
    void heading(std::string_view text) override { lines.emplace_back(text); }
    void note(std::string_view text, qmp::console::Colour) override { lines.back() += text; }
    void push_label(std::string_view text, qmp::console::Colour) override {
        if (text.starts_with("Finalizing") || text.starts_with("Shifting")) lines.emplace_back(text);
    }
    std::vector<std::string> lines;
};

std::vector<std::string> steps_of(const RamComputation& made) {
    Steps steps;
    digits_of(made, ParallelContext::sequential(), 16, &steps);
    return steps.lines;
}

TEST(BrentMcMillan, Steps) {
    const auto terms = [](std::int32_t e, std::uint64_t p) {
        return "Summing Series A and B...  Summing: " +
               qmp::console::format_separated(qmp::Series_EulerGamma_BM_AB(e).TermsForPrecision(p)) +
               " terms";
    };
    const auto arccoth = [](std::uint64_t x, std::uint64_t p) {
        return "Summing Series...  Summing: " +
               qmp::console::format_separated(ArcCothSeries(x).TermsForPrecision(p)) + " terms";
    };
    // 100 words: n = 2^11, refined 2^10; the correction is needed to the words beyond exp(-4n).
    const std::uint64_t p = 100;
    const std::vector<std::string> logarithm = {"-198 ArcCoth( 26 )",  arccoth(26, p),   "Division...",
                                                "22 ArcCoth( 4801 )",  arccoth(4801, p), "Division...",
                                                "-88 ArcCoth( 8749 )", arccoth(8749, p), "Division..."};
    std::vector<std::string> expected = {
        terms(11, p), "Finalizing: Q^2: ", "Finalizing: R + S: ", "Finalizing: Q * (R + S): ", "Division..."};
    expected.insert(expected.end(), logarithm.begin(), logarithm.end());
    EXPECT_EQ(steps_of(*gamma_by("brent-original", p, 1)), expected);

    const auto words = static_cast<std::uint64_t>(
        std::llrint(std::min(4096 / 44.36141955583649, 100 - 4096 / 44.36141955583649) + 0.5));
    const std::uint64_t c_terms = EulerGammaSeriesC(10).TermsForPrecision(words);
    const std::vector<std::string> refined = steps_of(*gamma_by("brent-refined", p, 1));
    ASSERT_EQ(refined.size(), 22u);
    EXPECT_EQ(refined[0], terms(10, p));
    EXPECT_EQ(refined[5],
              "\nSumming Series C...  Summing: " + qmp::console::format_separated(c_terms) + " terms");
    const std::vector<std::string> finishing = {
        "Finalizing: P + Q: ", "Finalizing: S^2: ", "Finalizing: P * S: ", "Finalizing: R^2: ",
        "Finalizing: Q * R: ", "Shifting: Q * S: ", "Division..."};
    EXPECT_EQ(std::vector<std::string>(refined.begin() + 6, refined.begin() + 13), finishing);
    EXPECT_EQ(std::vector<std::string>(refined.begin() + 13, refined.end()),
              (std::vector<std::string>{"-180 ArcCoth( 26 )", logarithm[1], "Division...",
                                        "20 ArcCoth( 4801 )", logarithm[4], "Division...",
                                        "-80 ArcCoth( 8749 )", logarithm[7], "Division..."}));

    // With four times the n nothing is missing.
    const std::vector<std::string> skipped = steps_of(*gamma_with(12, "brent-refined", p));
    EXPECT_EQ(skipped[5], "\nSumming Series C...  skipped");
    EXPECT_EQ(skipped[6], "-198 ArcCoth( 26 )");
}

TEST(EulerGammaSeriesC, TermsByTheirKernel) {
    Word words[15];
    const auto kernel = [&](std::int32_t e, std::uint64_t k, std::uint64_t r, std::uint64_t q,
                            std::uint64_t p) {
        qmp::BasicInt P(words, p), Q(words + 3, q), R(words + 9, r);
        EulerGamma_BMR_seriesC_BSR_End1(P, Q, R, e, k);
        return std::array{P, Q, R};
    };
    const auto [P, Q, R] = kernel(2, 1, 3, 6, 3);
    EXPECT_EQ(R.L, 1u);
    EXPECT_EQ(R.T[0], 1u);
    EXPECT_EQ(P.T[0], 1u);
    EXPECT_EQ(Q.T[0], 512u);
    // 2^131 3, in three words.
    const auto [P3, Q3, R3] = kernel(63, 3, 3, 6, 3);
    EXPECT_EQ(P3.T[0], 125u);
    EXPECT_EQ(R3.T[0], 125u);
    ASSERT_EQ(Q3.L, 3u);
    EXPECT_EQ(Q3.T[0] | Q3.T[1], 0u);
    EXPECT_EQ(Q3.T[2], 24u);
    for (const auto& [r, q, p] : {std::array{2, 6, 3}, std::array{3, 5, 3}, std::array{3, 6, 2}}) {
        try {
            kernel(2, 1, static_cast<std::uint64_t>(r), static_cast<std::uint64_t>(q),
                   static_cast<std::uint64_t>(p));
            ADD_FAILURE();
        } catch (const qmp::BufferTooSmallException& e) {
            EXPECT_EQ(e.function(), "EulerGamma_BMR_seriesC_BSR_End1()");
        }
    }
}

// Straight-line leaves against the recurrences P = P Q(k) + R(a + 1 .. k), Q = Q Q(k), R = R R(k).
TEST(EulerGammaSeriesC, LeavesEqualTheRecurrence) {
    for (const std::int32_t e : {-1, 0, 3, 10, 22, 29, 30, 40}) {
        const EulerGammaSeriesC series(e);
        for (const std::uint64_t a : {0u, 1u, 1000u, 1000000u}) {
            if (static_cast<double>(a + 15) > std::ldexp(2.0, e)) continue;
            for (std::uint64_t n = 1; n < series.leaf_size; n++) {
                std::vector<Word> memory(9 * 200);
                const auto buffer = [&](std::uint64_t i) { return memory.data() + i * 200; };
                qmp::ExactFloat P(buffer(0), 200), Q(buffer(1), 200), R(buffer(2), 200);
                const qmp::MultiplyContext context(ParallelContext::sequential(), nullptr, nullptr, 0);
                series.BSR_End(P, Q, R, context, a, a + n);
                qmp::BasicInt sum(buffer(3), 200), q(buffer(4), 200), r(buffer(5), 200), next(buffer(6), 200);
                Word term_words[15];
                for (std::uint64_t k = a + 1; k <= a + n; k++) {
                    qmp::BasicInt tp(term_words, 3), tq(term_words + 3, 6), tr(term_words + 9, 3);
                    EulerGamma_BMR_seriesC_BSR_End1(tp, tq, tr, e, k);
                    const auto multiply = [&](qmp::BasicInt& x, const qmp::BasicInt& factor) {
                        next.set_mulB(x, factor);
                        std::copy_n(next.T, next.L, x.T);
                        x.L = next.L;
                        x.hash = next.hash;
                    };
                    if (k == a + 1) {
                        for (auto [to, from] : {std::pair{&sum, &tp}, {&q, &tq}, {&r, &tr}}) {
                            std::copy_n(from->T, from->L, to->T);
                            to->L = from->L;
                            to->hash = from->hash;
                        }
                        continue;
                    }
                    multiply(r, tr);
                    multiply(sum, tq);
                    sum += r;
                    multiply(q, tq);
                }
                for (auto [x, expected] : {std::pair{&P, &sum}, {&Q, &q}, {&R, &r}}) {
                    ASSERT_EQ(x->L, expected->L) << e << ", " << a << ", " << n;
                    EXPECT_TRUE(std::equal(x->T, x->T + x->L, expected->T)) << e << ", " << a << ", " << n;
                    EXPECT_EQ(x->hash, expected->hash);
                    EXPECT_EQ(x->exp, 0);
                }
            }
        }
    }
}

TEST(EulerGammaSeriesC, EndsWhereItsTermsGrowAgain) {
    EXPECT_EQ(EulerGammaSeriesC(10).TermsForPrecision(1000), 2048u);
    EXPECT_EQ(EulerGammaSeriesC(-1).TermsForPrecision(1), 1u);
    EXPECT_EQ(EulerGammaSeriesC(0).TermsForPrecision(1), 2u);
    for (const std::uint64_t p : {1u, 10u, 80u}) {
        const std::uint64_t terms = EulerGammaSeriesC(10).TermsForPrecision(p);
        const auto log_term = [](double k) {
            double sum = 0;
            for (int j = 1; j <= k; j++) sum += std::log(std::pow(2.0 * j - 1, 3) / (32.0 * 1048576 * j));
            return sum;
        };
        EXPECT_LT(log_term(static_cast<double>(terms)), -44.36 * static_cast<double>(p));
        EXPECT_GT(log_term(static_cast<double>(terms) - 3), -44.36 * static_cast<double>(p) - 45);
    }
    // Plans of blocks of single terms would be warned about.
    EXPECT_LT(qmp::build_psr_plan(EulerGammaSeriesC(22), 378000, 1.0).blocks.size(), 1000u);
}

}  // namespace
}  // namespace kelvara
