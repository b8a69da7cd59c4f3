// The same digits, and the same words behind them, whatever computes them.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "constants/size_rules.h"
#include "platform/parallel/registry.h"
#include "sessions/session_run.h"
#include "support/computation_memory.h"
#include "support/levels.h"

namespace kelvara {
namespace {

using kelvara_test::Algorithm;
using kelvara_test::ComputationMemory;
using kelvara_test::Outcome;
using kelvara_test::pi_and_e;
using kelvara_test::run_session;

constexpr std::uint64_t many_digits = 200'000;

class Identity : public testing::TestWithParam<Algorithm> {};

void expect_same_files(const Outcome& one, const Outcome& other) {
    EXPECT_TRUE(one.decimal == other.decimal);
    EXPECT_TRUE(one.hexadecimal == other.hexadecimal);
    EXPECT_EQ(one.decimal_output.hash, other.decimal_output.hash);
    EXPECT_EQ(one.hexadecimal_output.hash, other.hexadecimal_output.hash);
    EXPECT_EQ(one.decimal_output.counts, other.decimal_output.counts);
}

// All the words of a computed constant and its exponent, those behind the digits too.
struct Value {
    std::vector<qmp::Word> words;
    std::int64_t exp;

    bool operator==(const Value&) const = default;
};

Value value_of(const Algorithm& algorithm, std::uint64_t digits, std::uint64_t tasks,
               std::string_view framework_key = "pushpool") {
    const auto constant = make_constant(constant_id(algorithm.constant));
    constant->set_algorithm_keyword(algorithm.keyword);
    constant->set_size(precision_for_digits(digits));
    const auto computation = constant->make_ram_computation(tasks);
    ComputationMemory memory(computation->working_bytes(), computation->largest_product());
    const auto framework = qmp::make_parallelizer(framework_key);
    qmp::SilentProgress progress;
    const qmp::OwnedBigFloat value =
        computation->compute(memory.context({tasks, framework.get()}, &progress));
    return {{value.number.T, value.number.T + value.number.L}, value.number.exp};
}

TEST_P(Identity, OfFilesForEveryTaskCount) {
    const Outcome first = run_session(GetParam(), many_digits, 1, "none");
    EXPECT_EQ(first.decimal.size(), many_digits + 2);
    for (const std::uint64_t tasks : {1u, 2u, 3u, 16u}) {
        SCOPED_TRACE(testing::Message() << tasks << " tasks");
        expect_same_files(first, run_session(GetParam(), many_digits, tasks, "pushpool"));
    }
}

TEST_P(Identity, OfWordsForEveryFramework) {
    const Value first = value_of(GetParam(), many_digits, 1, "none");
    for (const std::string& framework : qmp::parallelizer_keys()) {
        EXPECT_TRUE(value_of(GetParam(), many_digits, 5, framework) == first) << framework;
    }
}

TEST_P(Identity, OfWordsForEveryTaskCount) {
    for (const std::uint64_t digits : {5'000u, 200'000u}) {
        const Value first = value_of(GetParam(), digits, 1);
        for (const std::uint64_t tasks : {2u, 3u, 16u}) {
            EXPECT_TRUE(value_of(GetParam(), digits, tasks) == first)
                << digits << " digits, " << tasks << " tasks";
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EveryAlgorithm, Identity, testing::ValuesIn(pi_and_e),
                         kelvara_test::algorithm_test_name);

// Each level against the best one.
class LevelIdentity : public kelvara_test::LevelTest {};

TEST_P(LevelIdentity, OfFilesAndWords) {
    for (const Algorithm& algorithm : {pi_and_e[0], pi_and_e[4]}) {
        for (const std::uint64_t tasks : {1u, 3u}) {
            SCOPED_TRACE(testing::Message() << algorithm.constant << ", " << tasks << " tasks");
            qmp::force_level("");
            const Outcome best = run_session(algorithm, many_digits, tasks, "pushpool");
            const Value best_value = value_of(algorithm, many_digits, tasks);
            qmp::force_level(qmp::name_of(level()));
            expect_same_files(best, run_session(algorithm, many_digits, tasks, "pushpool"));
            EXPECT_TRUE(value_of(algorithm, many_digits, tasks) == best_value);
        }
    }
}

INSTANTIATE_EVERY_LEVEL(LevelIdentity);

// Many tasks, more than there are leaves; every framework.
TEST(SessionDigits, DoNotDependOnTheFramework) {
    for (const Algorithm& algorithm : {pi_and_e[0], pi_and_e[4]}) {
        const Outcome first = run_session(algorithm, 20'000, 1, "none");
        for (const std::string& framework : qmp::parallelizer_keys()) {
            for (const std::uint64_t tasks : {1, 2, 7, 64}) {
                SCOPED_TRACE(testing::Message() << algorithm.constant << " " << framework << " " << tasks);
                expect_same_files(first, run_session(algorithm, 20'000, tasks, framework));
            }
        }
    }
}

TEST(SessionDigits, DoNotDependOnTheFormula) {
    const Outcome chudnovsky = run_session(pi_and_e[0], many_digits, 2, "pushpool");
    expect_same_files(chudnovsky, run_session(pi_and_e[1], many_digits, 2, "pushpool"));
    const Outcome positive = run_session(pi_and_e[4], many_digits, 2, "pushpool");
    expect_same_files(positive, run_session(pi_and_e[5], many_digits, 2, "pushpool"));
}

}  // namespace
}  // namespace kelvara
