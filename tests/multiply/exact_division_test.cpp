#include "multiply/basecase/exact_division.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "errors/exception.h"
#include "multiply/basecase/schoolbook.h"
#include "multiply/exact_divisor.h"
#include "multiply/multiply.h"
#include "support/random_words.h"
#include "support/twiddled_context.h"

namespace qmp {
namespace {

using kelvara_test::all_patterns;
using kelvara_test::make_words;
using kelvara_test::Pattern;
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

// Quotients by transforms, prepared for `words` words.
void expect_quotients(std::uint64_t words, const std::vector<Word>& first, const std::vector<Word>& second,
                      std::vector<Word> divisor) {
    divisor[0] |= 1;
    kelvara_test::TwiddledContext context(2 * words, iPsize(2 * words, 1));
    const ExactDivisor exact(context.context(), divisor.data(), divisor.size(), words);
    for (const auto* quotient : {&first, &second}) {
        std::vector<Word> x = product(*quotient, divisor);
        ASSERT_EQ(exact.divide(context.context(), x.data(), x.size()), quotient->size());
        EXPECT_TRUE(std::equal(quotient->begin(), quotient->end(), x.begin()));
    }
    EXPECT_TRUE(context.guards_intact());
}

TEST(ExactDivisor, UndoesProductsOfEveryPattern) {
    Random random;
    for (const auto of_quotient : all_patterns) {
        for (const auto of_divisor : all_patterns) {
            for (const auto& [q, m] :
                 {std::pair(32u, 2u), {33u, 40u}, {57u, 33u}, {300u, 45u}, {800u, 100u}, {100u, 800u}}) {
                SCOPED_TRACE(testing::Message() << q << " words by " << m);
                expect_quotients(q + 1, make_words(random, q, of_quotient), make_words(random, q - 1),
                                 make_words(random, m, of_divisor));
            }
        }
    }
}

TEST(ExactDivisor, RefusesQuotientsThatAreTooLong) {
    Random random;
    expect_quotients(40, make_words(random, 39), make_words(random, 1), make_words(random, 5));
    EXPECT_THROW(expect_quotients(40, make_words(random, 41), make_words(random, 1), make_words(random, 5)),
                 BufferTooSmallException);
}

// Beyond the floating-point transform.
TEST(ExactDivisor, UndoesLongProducts) {
    Random random;
    expect_quotients(9000, make_words(random, 8999), make_words(random, 8000), make_words(random, 700));
    expect_quotients(9000, make_words(random, 8999, Pattern::ones), make_words(random, 1),
                     make_words(random, 700, Pattern::ones));
}

}  // namespace
}  // namespace qmp
