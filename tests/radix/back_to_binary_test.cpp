// The digits that are written, converted back to a binary integer by another method than the conversion's: by
// multiplying and adding halves, in less than quadratic time.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#ifdef KELVARA_HAVE_GMP
#include <gmp.h>
#endif

#include "multiply/basecase/word_kernels.h"
#include "multiply/multiply.h"
#include "radix/digit_codecs.h"
#include "radix/output_fixture.h"
#include "radix/thread_per_task.h"
#include "support/levels.h"

namespace qmp {
namespace {

using kelvara_test::all_patterns;
using kelvara_test::make_words;
using kelvara_test::Number;
using kelvara_test::Output;
using kelvara_test::Random;
using kelvara_test::Session;
using kelvara_test::ThreadPerTask;

using Words = std::vector<Word>;

const ParallelContext one_task = ParallelContext::sequential();

Words without_leading_zeros(Words words) {
    while (!words.empty() && words.back() == 0) words.pop_back();
    return words;
}

// Digit words in base 10^19 to binary words, and what that takes.
class BackToBinary {
  public:
    explicit BackToBinary(std::uint64_t digit_words)
        : twiddles_(3 * digit_words + 64), scratch_(scratch_words_for(3 * digit_words + 64, 1)) {}

    Words product(const Words& a, const Words& b) {
        if (a.empty() || b.empty()) return {};
        Words result(a.size() + b.size());
        multiply({one_task, twiddles_.get(), scratch_.data(), scratch_.words()}, result.data(), a.data(),
                 a.size(), b.data(), b.size());
        return without_leading_zeros(result);
    }

    // 10^(19 n).
    const Words& power(std::uint64_t n) {
        const auto known = powers_.find(n);
        if (known != powers_.end()) return known->second;
        Words result{decimal_word_base};
        if (n > 1) result = product(power(n / 2), power(n - n / 2));
        return powers_[n] = result;
    }

    Words binary(const Word* digits, std::uint64_t n) {
        if (n == 1) return without_leading_zeros({*digits});
        const std::uint64_t low_words = n / 2;
        Words sum = product(binary(digits + low_words, n - low_words), power(low_words));
        Words low = binary(digits, low_words);
        const std::size_t length = std::max(sum.size(), low.size()) + 1;
        sum.resize(length);
        low.resize(length);
        EXPECT_FALSE(add_words(sum.data(), sum.data(), low.data(), length));
        return without_leading_zeros(sum);
    }

  private:
    kelvara_test::Twiddles twiddles_;
    kelvara_test::AlignedWords scratch_;
    std::map<std::uint64_t, Words> powers_;
};

// The integer whose decimal digits these are; 19 n of them.
Words integer_of(BackToBinary& back, const std::string& digits) {
    const std::uint64_t n = digits.size() / 19;
    std::string raw(digits.size(), '\0');
    EXPECT_TRUE(dec_to_raw(raw.data(), digits.data(), digits.size()));
    Words words(n);
    d19_to_u64(words.data(), raw.data(), n);
    return back.binary(words.data(), n);
}

#ifdef KELVARA_HAVE_GMP
Words integer_by_gmp(const std::string& digits) {
    mpz_t value;
    mpz_init_set_str(value, digits.c_str(), 10);
    Words words(digits.size() / 19 + 1, 0);
    mpz_export(words.data(), nullptr, -1, 8, 0, 0, value);
    mpz_clear(value);
    return without_leading_zeros(words);
}
#endif

std::string fraction_digits(const Output& output) {
    return output.text.substr(output.text.find('.') + 1);
}

// The digits are those of Floor(f 10^d), to the last.
TEST(BackToBinary, TheDigitsAreTheValue) {
    Random random(30);
    ThreadPerTask threads;
    for (const std::uint64_t n : {1u, 2u, 50u, 526u, 2000u, 10526u}) {
        const std::uint64_t digits = 19 * n;
        BackToBinary back(n);
        for (const auto pattern : all_patterns) {
            const Words fraction = make_words(random, n + 8, pattern);
            Session session = Session::decimal(threads.context(1 + n % 3), digits);
            const Output output = session.write_decimal(Number(fraction, 5).view(), digits);
            ASSERT_TRUE(output.messages.empty());
            Words exact = back.product(fraction, back.power(n));
            exact.erase(exact.begin(),
                        exact.begin() + static_cast<std::ptrdiff_t>(std::min(exact.size(), fraction.size())));
            const Words found = integer_of(back, fraction_digits(output));
            EXPECT_TRUE(found == without_leading_zeros(exact)) << digits << " digits";
#ifdef KELVARA_HAVE_GMP
            EXPECT_TRUE(found == integer_by_gmp(fraction_digits(output))) << digits << " digits";
#endif
        }
    }
}

// A single wrong digit would be seen.
TEST(BackToBinary, OneDigitMakesADifference) {
    BackToBinary back(100);
    Random random(31);
    std::string digits(1900, '0');
    for (char& c : digits) c = static_cast<char>('1' + random.between(0, 7));
    const Words value = integer_of(back, digits);
    for (std::size_t i = 0; i < digits.size(); i += 37) {
        std::string other = digits;
        ++other[i];
        EXPECT_NE(integer_of(back, other), value);
    }
}

// The same digits whatever computes them: up to the sizes at which every algorithm of the tables has had its
// turn.
TEST(DecimalOutputEverywhere, LevelsAndTaskCounts) {
    Random random(32);
    ThreadPerTask threads;
    for (const std::uint64_t digits : {5000u, 300000u}) {
        const Number x(make_words(random, digits / 19 + 8), 3);
        Session reference_session = Session::decimal(one_task, digits);
        const Output reference = reference_session.write_decimal(x.view(), digits);
        kelvara_test::for_every_level([&](InstructionLevel) {
            for (const std::uint64_t tasks : {1u, 2u, 3u, 16u}) {
                Session session = Session::decimal(threads.context(tasks), digits);
                const Output output = session.write_decimal(x.view(), digits);
                EXPECT_TRUE(output.text == reference.text) << tasks << " tasks, " << digits << " digits";
                EXPECT_EQ(output.digits.hash, reference.digits.hash);
                EXPECT_EQ(output.digits.counts, reference.digits.counts);
                EXPECT_TRUE(output.messages.empty());
            }
        });
    }
}

}  // namespace
}  // namespace qmp
