#include "multiply/basecase/exact_division.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "multiply/basecase/schoolbook.h"
#include "multiply/exact_divisor.h"
#include "multiply/multiply.h"
#include "support/random_words.h"
#include "support/twiddled_context.h"

namespace qmp {
namespace {

using kelvara_test::all_patterns;
using kelvara_test::make_words;
using kelvara_test::Random;

std::vector<Word> product(const std::vector<Word>& a, const std::vector<Word>& b) {
    std::vector<Word> result(a.size() + b.size());
    mulB(result.data(), a.data(), a.size(), b.data(), b.size());
    if (result.back() == 0) result.pop_back();
    return result;
}

// The product of a quotient and a divisor divided again, with words above it that must not change.
void expect_quotient(const std::vector<Word>& quotient, std::vector<Word> divisor) {
    divisor[0] |= 1;
    std::vector<Word> x = product(quotient, divisor);
    const std::size_t n = x.size();
    x.resize(n + 3, kelvara_test::garbage);
    ASSERT_EQ(divide_exact(x.data(), n, divisor.data(), divisor.size()), quotient.size());
    EXPECT_TRUE(std::equal(quotient.begin(), quotient.end(), x.begin()));
    EXPECT_EQ(std::count(x.begin() + static_cast<std::ptrdiff_t>(n), x.end(), kelvara_test::garbage), 3);
}

TEST(ExactDivision, InvertsEveryKindOfOddWord) {
    Random random;
    for (int i = 0; i < 1000; i++) {
        const Word odd = random.next() >> random.between(0, 63) | 1;
        EXPECT_EQ(odd * inverse_word(odd), 1u) << odd;
    }
    EXPECT_EQ(inverse_word(1), 1u);
    EXPECT_EQ(inverse_word(~Word{0}), ~Word{0});
}

TEST(ExactDivision, UndoesProductsOfEveryLengthAroundItsBlocks) {
    Random random;
    for (std::uint64_t m = 1; m <= 40; m++) {
        for (std::uint64_t q = 1; q <= 40; q++) {
            SCOPED_TRACE(testing::Message() << q << " words by " << m);
            expect_quotient(make_words(random, q), make_words(random, m));
        }
    }
}

TEST(ExactDivision, UndoesProductsOfPatternsThatBreakCarries) {
    Random random;
    for (const auto of_quotient : all_patterns) {
        for (const auto of_divisor : all_patterns) {
            for (const auto& [q, m] :
                 {std::pair(1u, 1u), {1u, 30u}, {30u, 1u}, {11u, 12u}, {60u, 13u}, {13u, 60u}}) {
                SCOPED_TRACE(testing::Message() << q << " words by " << m);
                expect_quotient(make_words(random, q, of_quotient), make_words(random, m, of_divisor));
            }
        }
    }
}

TEST(ExactDivision, UndoesProductsWithTheLongestDivisor) {
    Random random;
    expect_quotient(make_words(random, 700), make_words(random, longest_divisor));
    expect_quotient(make_words(random, 10), make_words(random, longest_divisor));
}

// Quotients of the transforms' method, of two numbers by one divisor, against the schoolbook's.
void expect_quotients(const std::vector<Word>& first, const std::vector<Word>& second,
                      std::vector<Word> divisor) {
    divisor[0] |= 1;
    const std::uint64_t words = std::max(first.size(), second.size()) + 1;
    kelvara_test::TwiddledContext context(2 * words, iPsize(2 * words, 1));
    std::vector<Word> temporary(2 * words, kelvara_test::garbage);
    const auto exact = std::make_unique<ExactDivisor>(context.context(), divisor.data(), divisor.size(),
                                                      words, temporary.data());
    for (const auto* quotient : {&first, &second}) {
        std::vector<Word> x = product(*quotient, divisor);
        ASSERT_EQ(exact->divide(x.data(), x.size()), quotient->size());
        EXPECT_TRUE(std::equal(quotient->begin(), quotient->end(), x.begin()));
    }
}

TEST(ExactDivisor, UndoesProductsOfEveryPattern) {
    Random random;
    for (const auto of_quotient : all_patterns) {
        for (const auto of_divisor : all_patterns) {
            for (const auto& [q, m] :
                 {std::pair(5u, 32u), {28u, 40u}, {29u, 40u}, {57u, 33u}, {300u, 45u}, {800u, 100u}}) {
                SCOPED_TRACE(testing::Message() << q << " words by " << m);
                expect_quotients(make_words(random, q, of_quotient), make_words(random, q - 1),
                                 make_words(random, m, of_divisor));
            }
        }
    }
}

TEST(ExactDivisor, UndoesProductsWithItsLongestQuotient) {
    Random random;
    expect_quotients(make_words(random, ExactDivisor::longest_quotient - 1), make_words(random, 3),
                     make_words(random, longest_divisor));
}

}  // namespace
}  // namespace qmp
