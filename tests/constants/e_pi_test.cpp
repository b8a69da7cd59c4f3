// e and pi by all their algorithms: digits, memory, names.
#include <gtest/gtest.h>

#include <algorithm>

#include "console/format.h"
#include "constants/catalogue.h"
#include "constants/pi_series.h"
#include "multiply/multiply.h"
#include "platform/parallel/registry.h"
#include "series/series_e_taylor.h"
#include "series/series_sizes.h"
#include "series/sum_series.h"
#include "support/computation_memory.h"
#include "support/hexadecimal_fraction.h"
#include "support/reference_digits.h"

namespace kelvara {
namespace {

using kelvara_test::ComputationMemory;
using kelvara_test::hex_fraction;
using kelvara_test::hex_tail;
using kelvara_test::reference_digits;
using kelvara_test::ReferenceDigits;
using qmp::ParallelContext;

std::unique_ptr<RamComputation> computation(ConstantId id, const char* keyword, std::uint64_t p,
                                            std::uint64_t tasks) {
    const auto constant = make_constant(id);
    constant->set_algorithm_keyword(keyword);
    constant->set_size(p);
    auto made = constant->make_ram_computation(tasks);
    EXPECT_EQ(made->precision(), p);
    EXPECT_EQ(made->tasks(), tasks ? tasks : 1);
    return made;
}

// Computes in a region that holds no more than the estimate and a session's reserve, with twiddle tables
// for no longer products than announced.
std::string digits_of(const RamComputation& made, ParallelContext parallel, std::uint64_t digits,
                      qmp::Word integer_part) {
    ComputationMemory memory(made.working_bytes(), made.largest_product());
    qmp::SilentProgress progress;
    const qmp::OwnedBigFloat value = made.compute(memory.context(parallel, &progress));
    value.check();
    EXPECT_LE(memory.region().peak_bytes(), made.working_bytes() + (std::uint64_t{1} << 20));
    EXPECT_EQ(memory.region().count(), 1u);
    EXPECT_LE(memory.region().used_bytes(), 8 * (made.precision() + 7) + qmp::checked_array_overhead(64));
    EXPECT_LE(value.number.L, made.precision() + 3);  // the integer part that e adds takes a word
    EXPECT_EQ(value.number.sign, 1);
    EXPECT_EQ(value.number.top(), 1);
    EXPECT_EQ(value.number.T[value.number.L - 1], integer_part);
    return hex_fraction(value.number, 0, digits);
}

struct Algorithm {
    ConstantId id;
    const char* keyword;
    const char* reference;
    qmp::Word integer_part;
};

constexpr Algorithm algorithms[] = {
    {id_e, "exp(1)", "e", 2},
    {id_e, "exp(-1)", "e", 2},
    {id_pi, "chudnovsky", "pi", 3},
    {id_pi, "ramanujan", "pi", 3},
    {id_pi, "chudnovsky-reduced", "pi", 3},
    {id_pi, "ramanujan-reduced", "pi", 3},
};

TEST(EAndPi, EqualTheReferenceDigits) {
    for (const Algorithm& a : algorithms) {
        for (const std::uint64_t decimal : {100u, 1000u, 10000u}) {
            const ReferenceDigits reference = reference_digits(a.reference, decimal);
            const auto made = computation(a.id, a.keyword, precision_for_digits(decimal), 1);
            const std::string digits =
                digits_of(*made, ParallelContext::sequential(), reference.hex_digits, a.integer_part);
            EXPECT_EQ(digits.substr(digits.size() - 50), reference.hex_last50)
                << a.keyword << ", " << decimal;
        }
    }
}

// The two routes to e, and the four to pi, agree in every digit of sizes in between.
TEST(EAndPi, AlgorithmsAgree) {
    for (const std::uint64_t p : {1u, 2u, 3u, 9u, 10u, 11u, 57u, 100u, 734u, 735u, 740u, 1500u, 3000u}) {
        std::string first[2];
        for (const Algorithm& a : algorithms) {
            const auto made = computation(a.id, a.keyword, p, 1);
            const std::string digits =
                digits_of(*made, ParallelContext::sequential(), 16 * p - 4, a.integer_part);
            std::string& expected = first[a.id == id_pi];
            if (expected.empty()) expected = digits;
            EXPECT_EQ(digits, expected) << a.keyword << ", " << p << " words";
        }
    }
}

TEST(EAndPi, TasksAndFrameworksDoNotMatter) {
    for (const Algorithm& a : algorithms) {
        const ReferenceDigits reference = reference_digits(a.reference, 10000);
        const std::uint64_t p = precision_for_digits(10000);
        for (const std::string& key : qmp::parallelizer_keys()) {
            const auto framework = qmp::make_parallelizer(key);
            for (const std::uint64_t tasks : {1u, 2u, 3u, 7u, 16u, 64u}) {
                const auto made = computation(a.id, a.keyword, p, tasks);
                const std::string digits =
                    digits_of(*made, {tasks, framework.get()}, reference.hex_digits, a.integer_part);
                EXPECT_EQ(digits.substr(digits.size() - 50), reference.hex_last50)
                    << a.keyword << ", " << tasks << " tasks, " << framework->get_type_name();
            }
        }
    }
}

TEST(EAndPi, Names) {
    struct Row {
        ConstantId id;
        const char* keyword;
        const char* short_name;
        const char* long_name;
    };
    const Row rows[] = {
        {id_e, "exp(1)", "exp(1)", "Taylor Series of exp(1)"},
        {id_e, "exp(-1)", "exp(-1)", "Taylor Series of exp(-1)"},
        {id_pi, "chudnovsky", "Chudnovsky", "Chudnovsky Formula"},
        {id_pi, "ramanujan", "Ramanujan", "Ramanujan's Formula"},
        {id_pi, "chudnovsky-reduced", "Chudnovsky", "Chudnovsky Formula (reduced memory)"},
        {id_pi, "ramanujan-reduced", "Ramanujan", "Ramanujan's Formula (reduced memory)"},
    };
    for (const Row& row : rows) {
        const auto made = computation(row.id, row.keyword, 10, 0);
        EXPECT_STREQ(made->short_name(), row.short_name);
        EXPECT_STREQ(made->long_name(), row.long_name);
    }
}

// The figures that screens show are those of the formulas, to the byte.
TEST(EAndPi, EstimatesFollowTheirFormulas) {
    for (const std::uint64_t p : {1u, 54u, 521u, 3000u}) {
        for (const std::uint64_t t : {1u, 2u, 5u}) {
            const std::uint64_t s = p + 100;
            const std::uint64_t d = p + 110 + ((p + 101) & ~std::uint64_t{1});
            for (const bool negative : {false, true}) {
                const auto [w, m] = qmp::BSR_sizes(qmp::Series_e_Taylor(negative), s, 1, t);
                const std::uint64_t formula =
                    std::max(m + 24 * w, 8 * s + 2 * (w + 8) + qmp::iPsize(p + 103, t) + 8 * d);
                const auto made = computation(id_e, negative ? "exp(-1)" : "exp(1)", p, t);
                EXPECT_EQ(made->memory_estimate(), formula);
                // Both parts of the fraction stay whole while it is divided.
                EXPECT_GE(made->working_bytes(), formula);
                EXPECT_LE(made->working_bytes(), formula + 16 * w);
            }
            for (const bool reduced : {false, true}) {
                const auto made = computation(id_pi, reduced ? "chudnovsky-reduced" : "chudnovsky", p, t);
                const qmp::BinarySplittingSeries& series = pi_formula(0).series;
                const qmp::PsrPlan plan = qmp::build_psr_plan(series, p, reduced ? 0.5 : 1.0);
                const qmp::PlanSizes sizes = series.SizesForPlan(plan, 0, t);
                const std::uint64_t a =
                    sizes.scratch_bytes + 2 * (8 * sizes.running_words + 16 * sizes.exact_words);
                const std::uint64_t b =
                    qmp::iPsize(s + 3, t) + 2 * (8 * sizes.running_words + 4 * d + 8 * sizes.exact_words);
                const std::uint64_t c = qmp::iPsize(p + 102, t) + 8 * (p + 107) + (8 * s + 32) + 8 * s + 16;
                std::uint64_t halved = 0;
                for (const qmp::AlgorithmTable::Entry& entry : qmp::basic_table_64().entries()) {
                    halved =
                        std::max(halved, entry.algorithm->psize_halved(std::min(entry.threshold, 2 * s), t));
                    if (entry.threshold >= 2 * s) break;
                }
                const std::uint64_t product =
                    reduced ? halved + 24 * s + 48 : (8 * s + 32) + qmp::iPsize(2 * s, t) + 8 * s + 16;
                EXPECT_EQ(made->memory_estimate(), std::max({a, b, c, product}))
                    << p << ", " << t << ", " << reduced;
            }
        }
    }
}

// A computation reports its steps in order, each ended before the next begins.
class Steps final : public qmp::SilentProgress {
  public:
    void begin_step(std::string_view title, std::string_view status) override {
        EXPECT_FALSE(inside_);
        inside_ = true;
        titles.push_back(std::string(title) + "|" + std::string(status));
    }
    void note(std::string_view text, qmp::console::Colour) override { titles.push_back(std::string(text)); }
    void end_step() override {
        EXPECT_TRUE(inside_);
        inside_ = false;
    }
    std::vector<std::string> titles;

  private:
    bool inside_ = false;
};

TEST(EAndPi, Steps) {
    const auto steps_of = [](ConstantId id, const char* keyword) {
        const auto made = computation(id, keyword, 1000, 1);
        ComputationMemory memory(made->working_bytes(), made->largest_product());
        Steps steps;
        made->compute(memory.context(ParallelContext::sequential(), &steps));
        return steps.titles;
    };
    const std::vector<std::string> pi = {"Summing Series...  |Summing Series", "Summing: 1,360 terms",
                                         "Division...|Division", "InvSqrt...|InvSqrt",
                                         "Final Multiply...|Final Multiply"};
    EXPECT_EQ(steps_of(id_pi, "chudnovsky"), pi);
    const std::uint64_t terms = qmp::Series_e_Taylor(false).TermsForPrecision(1000);
    const std::vector<std::string> e = {"Summing Series...  |Summing Series",
                                        "Summing: " + qmp::console::format_separated(terms) + " terms",
                                        "Division...|Division"};
    EXPECT_EQ(steps_of(id_e, "exp(1)"), e);
    EXPECT_EQ(steps_of(id_e, "exp(-1)"), e);
}

}  // namespace
}  // namespace kelvara
