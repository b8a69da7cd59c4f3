// Square roots and the golden ratio: digits, memory, steps.
#include "constants/newton_root.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "constants/catalogue.h"
#include "errors/exception.h"
#include "multiply/multiply.h"
#include "numbers/division_driver.h"
#include "platform/parallel/registry.h"
#include "support/computation_memory.h"
#include "support/hexadecimal_fraction.h"
#ifdef KELVARA_HAVE_GMP
#include <gmp.h>
#endif

namespace kelvara {
namespace {

using kelvara_test::ComputationMemory;
using kelvara_test::hex_fraction;
using qmp::ParallelContext;
using qmp::Word;

// Factors of one word, none of them a square: short ones, odd words, bits in every place.
constexpr Word arguments[] = {2,
                              3,
                              5,
                              125,
                              200,
                              0xFFFFFFFF,
                              0x100000001,
                              0x123456789ABCDEF1,
                              0x7FFFFFFFFFFFFFFF,
                              0x8000000000000001,
                              0xFFFFFFFE00000002,
                              UINT64_MAX - 1,
                              UINT64_MAX};

std::unique_ptr<RamComputation> square_root(Word n, std::uint64_t p, std::uint64_t tasks) {
    const auto constant = make_constant(id_square_root);
    constant->set_argument(n);
    constant->set_size(p);
    return constant->make_ram_computation(tasks);
}
std::unique_ptr<RamComputation> golden_ratio(std::uint64_t p, std::uint64_t tasks) {
    const auto constant = make_constant(id_golden_ratio);
    constant->set_size(p);
    return constant->make_ram_computation(tasks);
}

// The integer part and as many hexadecimal digits as a session takes of p words, computed in a region of
// the promised size.
std::string digits_of(const RamComputation& made, ParallelContext parallel) {
    ComputationMemory memory(made.working_bytes(), made.largest_product());
    qmp::SilentProgress progress;
    const qmp::OwnedBigFloat value = made.compute(memory.context(parallel, &progress));
    value.check();
    EXPECT_LE(memory.region().peak_bytes(), made.working_bytes() + (std::uint64_t{1} << 20));
    EXPECT_EQ(memory.region().count(), 1u);
    EXPECT_LE(value.number.L, made.precision() + 4);
    EXPECT_EQ(value.number.sign, 1);
    EXPECT_EQ(value.number.top(), 1);
    return std::to_string(value.number.T[value.number.L - 1]) + "." +
           hex_fraction(value.number, 0, 16 * (made.precision() - 1) - 1);
}

#ifdef KELVARA_HAVE_GMP
// The same of sqrt(n): the integer root of n 2^(8 digits).
std::string expected_root(Word n, std::uint64_t p, bool golden) {
    const std::uint64_t digits = 16 * (p - 1) - 1;
    mpz_t x;
    mpz_init(x);
    mpz_import(x, 1, -1, sizeof(Word), 0, 0, &n);
    mpz_mul_2exp(x, x, 8 * digits + 2);
    mpz_sqrt(x, x);  // 2 sqrt(n), with one bit more than the digits
    if (golden) {
        mpz_t one;
        mpz_init_set_ui(one, 2);
        mpz_mul_2exp(one, one, 4 * digits);
        mpz_add(x, x, one);
        mpz_clear(one);
        mpz_fdiv_q_2exp(x, x, 1);
    }
    mpz_fdiv_q_2exp(x, x, 1);
    mpz_t integer;
    mpz_init(integer);
    mpz_fdiv_q_2exp(integer, x, 4 * digits);
    std::string text(digits + 20, '\0');
    mpz_get_str(text.data(), 10, integer);
    std::string result = text.c_str() + std::string(".");
    mpz_fdiv_r_2exp(x, x, 4 * digits);
    mpz_get_str(text.data(), 16, x);
    const std::string fraction = text.c_str();
    result += std::string(digits - fraction.size(), '0') + fraction;
    mpz_clear(integer);
    mpz_clear(x);
    return result;
}

TEST(NewtonRoot, EqualsTheIntegerRoot) {
    for (const std::uint64_t p : {2u, 3u, 7u, 9u, 10u, 11u, 64u, 99u, 1000u, 2500u}) {
        for (const Word n : arguments) {
            EXPECT_EQ(digits_of(*square_root(n, p, 1), ParallelContext::sequential()),
                      expected_root(n, p, false))
                << n << ", " << p;
        }
        EXPECT_EQ(digits_of(*golden_ratio(p, 1), ParallelContext::sequential()), expected_root(5, p, true))
            << p;
    }
}
#endif

TEST(NewtonRoot, TasksDoNotMatter) {
    const auto framework = qmp::make_parallelizer("pushpool");
    for (const Word n : {Word{2}, Word{UINT64_MAX}}) {
        const std::string one = digits_of(*square_root(n, 30000, 1), ParallelContext::sequential());
        for (const std::uint64_t tasks : {2u, 16u}) {
            EXPECT_EQ(digits_of(*square_root(n, 30000, tasks), {tasks, framework.get()}), one) << tasks;
        }
    }
    const std::string one = digits_of(*golden_ratio(30000, 1), ParallelContext::sequential());
    for (const std::uint64_t tasks : {2u, 16u}) {
        EXPECT_EQ(digits_of(*golden_ratio(30000, tasks), {tasks, framework.get()}), one) << tasks;
    }
}

TEST(NewtonRoot, NamesAndEstimates) {
    for (const std::uint64_t p : {1u, 54u, 521u, 3000u}) {
        for (const std::uint64_t tasks : {1u, 2u, 5u}) {
            for (const auto& made : {square_root(3, p, tasks), golden_ratio(p, tasks)}) {
                EXPECT_EQ(made->memory_estimate(), qmp::iPsize(p + 102, tasks) + 16 * (p + 100) + 88);
                EXPECT_STREQ(made->short_name(), "Newton");
                EXPECT_STREQ(made->long_name(), "Newton's Method");
            }
        }
    }
    EXPECT_EQ(square_root(3, 100, 0)->tasks(), 1u);
}

TEST(NewtonRoot, RefusesWhatNoMultiplicationReaches) {
    for (const std::uint64_t p : {qmp::basic_table_64().largest_product() - 101, std::uint64_t{1} << 60}) {
        try {
            golden_ratio(p, 1);
            ADD_FAILURE() << p;
        } catch (const qmp::StringException& e) {
            EXPECT_EQ(e.message(), "Internal Error: Maximum Size Exceeded");
        }
    }
}

// All of it is one step.
class Steps final : public qmp::SilentProgress {
  public:
    void begin_step(std::string_view title, std::string_view status) override {
        reports.push_back(std::string(title) + "|" + std::string(status));
        depth_ = 0;
    }
    void push_label(std::string_view text, qmp::console::Colour) override {
        if (depth_++ == 0) reports.emplace_back(text);
    }
    void pop_label() override { depth_--; }
    void end_step() override { reports.emplace_back("end"); }
    std::vector<std::string> reports;

  private:
    int depth_ = 0;
};

TEST(NewtonRoot, Steps) {
    const auto steps_of = [](const RamComputation& made) {
        ComputationMemory memory(made.working_bytes(), made.largest_product());
        Steps steps;
        made.compute(memory.context(ParallelContext::sequential(), &steps));
        return steps.reports;
    };
    using Reports = std::vector<std::string>;
    EXPECT_EQ(steps_of(*square_root(2, 500, 1)),
              (Reports{"InvSqrt...|InvSqrt", "Iterating: ", "Multiplying", "end"}));
    EXPECT_EQ(steps_of(*golden_ratio(500, 1)),
              (Reports{"InvSqrt...|InvSqrt", "Iterating: ", "Multiplying", "Shifting", "end"}));
}

}  // namespace
}  // namespace kelvara
