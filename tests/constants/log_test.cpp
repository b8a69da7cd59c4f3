// Logarithms by both their formulas: digits, memory, names, steps.
#include <gtest/gtest.h>

#include <algorithm>

#include "constants/arccoth_series.h"
#include "constants/catalogue.h"
#include "constants/log_generator.h"
#include "constants/log_machin.h"
#include "platform/parallel/registry.h"
#include "series/sum_series.h"
#include "support/computation_memory.h"
#include "support/console.h"
#include "support/hexadecimal_fraction.h"
#include "support/reference_digits.h"
#include "support/sanitized.h"

namespace kelvara {
namespace {

using kelvara_test::ComputationMemory;
using kelvara_test::hex_fraction;
using kelvara_test::printed_by;
using kelvara_test::reference_digits;
using kelvara_test::ReferenceDigits;
using qmp::ParallelContext;

constexpr const char* keywords[] = {"machin-primary", "machin-secondary"};

std::unique_ptr<RamComputation> computation(std::uint64_t n, const char* keyword, std::uint64_t p,
                                            std::uint64_t tasks) {
    std::unique_ptr<RamComputation> made;
    printed_by([&] {
        const auto log = make_constant(id_log);
        log->set_argument(n);
        log->set_algorithm_keyword(keyword);
        log->set_size(p);
        made = log->make_ram_computation(tasks);
    });
    EXPECT_EQ(made->precision(), p);
    EXPECT_EQ(made->tasks(), tasks ? tasks : 1);
    return made;
}

// In a region that holds no more than announced, with twiddle tables for no longer products than announced.
std::string digits_of(const RamComputation& made, ParallelContext parallel, std::uint64_t digits) {
    ComputationMemory memory(made.working_bytes(), made.largest_product());
    qmp::SilentProgress progress;
    const qmp::OwnedBigFloat value = made.compute(memory.context(parallel, &progress));
    value.check();
    EXPECT_LE(memory.region().peak_bytes(), made.working_bytes() + (std::uint64_t{1} << 20));
    EXPECT_EQ(memory.region().count(), 1u);
    EXPECT_LE(value.number.L, made.precision() + qmp::big_float_extra_precision);
    EXPECT_EQ(value.number.sign, 1);
    value.number.check_normalization();
    const std::string integer_part =
        value.number.top() > 0 ? std::to_string(value.number.T[value.number.L - 1]) : "0";
    return integer_part + "." + hex_fraction(value.number, 0, digits);
}

TEST(Log, EqualsTheReferenceDigits) {
    struct Row {
        std::uint64_t n;
        const char* reference;
        const char* integer_part;
    };
    for (const Row& row : {Row{2, "log(2)", "0."}, Row{3, "log(3)", "1."}, Row{10, "log(10)", "2."}}) {
        for (const std::uint64_t decimal : {100u, 1000u, 10000u, 100000u}) {
            if (kelvara_test::sanitized && decimal > 10000) continue;
            const ReferenceDigits reference = reference_digits(row.reference, decimal);
            for (const char* keyword : keywords) {
                const auto made = computation(row.n, keyword, precision_for_digits(decimal), 1);
                const std::string digits =
                    digits_of(*made, ParallelContext::sequential(), reference.hex_digits);
                EXPECT_EQ(digits.substr(digits.size() - 50), reference.hex_last50) << keyword << decimal;
                EXPECT_EQ(digits.substr(0, 2), row.integer_part);
            }
        }
    }
}

// The two formulas agree in every digit: of the largest argument, and of sizes in between.
TEST(Log, FormulasAgree) {
    const auto expect_agreement = [](std::uint64_t n, std::uint64_t p) {
        std::string first;
        for (const char* keyword : keywords) {
            const auto made = computation(n, keyword, p, 2);
            const auto framework = qmp::make_default_parallelizer();
            const std::string digits = digits_of(*made, {2, framework.get()}, 16 * p - 24);
            if (first.empty()) first = digits;
            EXPECT_EQ(digits, first) << n << ", " << p << " words";
        }
    };
    expect_agreement(2147483647, precision_for_digits(kelvara_test::sanitized ? 2000 : 100000));
    for (const std::uint64_t p : {2u, 3u, 9u, 10u, 57u, 100u, 734u, 1500u}) {
        for (const std::uint64_t n : {2u, 7u, 23u, 1009u, 65536u, 65537u, 2147483647u})
            expect_agreement(n, p);
    }
}

TEST(Log, TasksAndFrameworksDoNotMatter) {
    const std::uint64_t p = precision_for_digits(20000);
    for (const char* keyword : keywords) {
        std::string first;
        for (const std::string& key : qmp::parallelizer_keys()) {
            const auto framework = qmp::make_parallelizer(key);
            for (const std::uint64_t tasks : {1u, 2u, 3u, 16u}) {
                const auto made = computation(7, keyword, p, tasks);
                const std::string digits = digits_of(*made, {tasks, framework.get()}, 16 * p + 32);
                if (first.empty()) first = digits;
                EXPECT_EQ(digits, first) << keyword << ", " << tasks << " tasks, " << key;
            }
        }
    }
}

TEST(Log, Names) {
    const auto primary = computation(2, "machin-primary", 10, 0);
    EXPECT_STREQ(primary->short_name(), "Machin (primary)");
    EXPECT_STREQ(primary->long_name(), "Primary Machin-like Formula (3 terms)");
    const auto secondary = computation(2, "machin-secondary", 10, 0);
    EXPECT_STREQ(secondary->short_name(), "Machin (secondary)");
    EXPECT_STREQ(secondary->long_name(), "Secondary Machin-like Formula (4 terms)");
    const auto log = make_constant(id_log);
    EXPECT_EQ(log->algorithm_name(), "Primary Machin-like Formula (3 terms)");
    log->set_algorithm(1);
    EXPECT_EQ(log->algorithm_name(), "Secondary Machin-like Formula (4 terms)");
    log->set_algorithm(2);
    EXPECT_EQ(log->algorithm_name(), "");
}

TEST(Log, TheEstimateFollowsItsFormula) {
    for (const std::uint64_t p : {1u, 54u, 521u, 3000u}) {
        for (const std::uint64_t tasks : {1u, 2u, 5u}) {
            const auto made = computation(2, "machin-primary", p, tasks);
            EXPECT_EQ(made->memory_estimate(),
                      qmp::memory_estimate(ArcCothSeries(26), p, tasks) + 8 * (p + 100));
            EXPECT_GE(made->working_bytes(), made->memory_estimate());
            EXPECT_LE(made->working_bytes(), made->memory_estimate() + made->memory_estimate() / 8);
        }
    }
}

// What is told, in order; no step begins inside another.
class Told final : public qmp::SilentProgress {
  public:
    void begin_step(std::string_view title, std::string_view) override {
        EXPECT_FALSE(inside_);
        inside_ = true;
        lines.emplace_back(title);
    }
    void heading(std::string_view text) override {
        EXPECT_FALSE(inside_);
        lines.emplace_back(text);
    }
    void end_step() override { inside_ = false; }
    std::vector<std::string> lines;

  private:
    bool inside_ = false;
};

TEST(Log, TellsEveryTerm) {
    const auto made = computation(2, "machin-primary", 100, 1);
    ComputationMemory memory(made->working_bytes(), made->largest_product());
    Told told;
    made->compute(memory.context(ParallelContext::sequential(), &told));
    const std::vector<std::string> expected = {
        "18 ArcCoth( 26 )",   "Summing Series...  ", "Division...",
        "-2 ArcCoth( 4801 )", "Summing Series...  ", "Division...",
        "8 ArcCoth( 8749 )",  "Summing Series...  ", "Division...",
    };
    EXPECT_EQ(told.lines, expected);
}

LogFormula formula(std::initializer_list<LogTerm> terms) {
    LogFormula made;
    for (const LogTerm& term : terms) made.slots[made.count++] = term;
    return made;
}

std::string digits_by(const LogFormula& chosen, std::uint64_t p) {
    const LogMachin made(p, 1, chosen, "short", "long");
    return digits_of(made, ParallelContext::sequential(), 16 * p - 16);
}

// One term alone; first terms and sums below zero; terms that cancel most of one another.
TEST(Log, SumsWhateverTheSigns) {
    for (const std::uint64_t p : {7u, 100u}) {
        const std::string two = digits_by(formula({{26, 18}, {4801, -2}, {8749, 8}}), p);
        EXPECT_EQ(digits_by(formula({{3, 2}}), p), two);
        EXPECT_EQ(digits_by(formula({{4801, -2}, {8749, 8}, {26, 18}}), p), two);
        EXPECT_EQ(digits_by(formula({{3, -2}, {3, 4}}), p), two);
        EXPECT_EQ(digits_by(formula({{3, -1000}, {3, 1002}}), p), two);
    }
}

}  // namespace
}  // namespace kelvara
