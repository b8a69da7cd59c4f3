// Conversions against an independent library's integers.
#ifdef KELVARA_HAVE_GMP

#include <gmp.h>
#include <gtest/gtest.h>

#include <vector>

#include "multiply/algorithm_table.h"
#include "radix/convert.h"
#include "radix/convert_fixture.h"
#include "radix/convert_operands.h"
#include "radix/thread_per_task.h"

namespace qmp {
namespace {

using kelvara_test::conversion_fractions;
using kelvara_test::conversion_sizes;
using kelvara_test::make_words;
using kelvara_test::PlannedConversion;
using kelvara_test::Random;
using kelvara_test::ThreadPerTask;
using kelvara_test::top;
using kelvara_test::Words;

constexpr Word base = decimal_word_base;
const ParallelContext one_task = ParallelContext::sequential();

// Floor(f B^m) as m digit words.
class Exact {
  public:
    Exact() { mpz_init(value_); }
    ~Exact() { mpz_clear(value_); }
    Words digits(const Words& fraction, std::uint64_t m) {
        mpz_import(value_, fraction.size(), -1, 8, 0, 0, fraction.data());
        mpz_t power;
        mpz_init(power);
        mpz_ui_pow_ui(power, 10, 19 * m);
        mpz_mul(value_, value_, power);
        mpz_clear(power);
        mpz_fdiv_q_2exp(value_, value_, 64 * fraction.size());
        Words words(m);
        for (Word& w : words) w = mpz_fdiv_q_ui(value_, value_, base);
        EXPECT_EQ(mpz_sgn(value_), 0);
        return words;
    }
    // The fraction N / B^k + delta / 2^(64 n) in n words, N having the given digit words.
    Words fraction(const Words& digits, std::uint64_t n, long delta) {
        mpz_set_ui(value_, 0);
        for (std::size_t i = digits.size(); i-- > 0;) {
            mpz_mul_ui(value_, value_, base);
            mpz_add_ui(value_, value_, digits[i]);
        }
        mpz_t power;
        mpz_init(power);
        mpz_ui_pow_ui(power, 10, 19 * digits.size());
        mpz_mul_2exp(value_, value_, 64 * n);
        mpz_fdiv_q(value_, value_, power);
        mpz_clear(power);
        delta >= 0 ? mpz_add_ui(value_, value_, static_cast<unsigned long>(delta))
                   : mpz_sub_ui(value_, value_, static_cast<unsigned long>(-delta));
        Words words(n, 0);
        mpz_export(words.data(), nullptr, -1, 8, 0, 0, value_);
        return words;
    }

  private:
    mpz_t value_;
};

TEST(ConvertAgainstGmp, EverySizeAndPattern) {
    Random random(10);
    Exact exact;
    for (const std::uint64_t m : conversion_sizes()) {
        PlannedConversion conversion(base, m, one_task);
        for (const Words& fraction : conversion_fractions(random, conversion.plan.fraction_words())) {
            ASSERT_EQ(top(conversion.convert(fraction)), exact.digits(fraction, m)) << m;
        }
    }
}

TEST(ConvertAgainstGmp, LargeSizes) {
    Random random(11);
    Exact exact;
    ThreadPerTask threads;
    for (const std::uint64_t m : {2000u, 9000u, 25000u}) {
        // As far as this build multiplies.
        if (m > basic_table_64().largest_product()) continue;
        PlannedConversion conversion(base, m, threads.context(2));
        const Words fraction = make_words(random, conversion.plan.fraction_words());
        EXPECT_EQ(top(conversion.convert(fraction, false)), exact.digits(fraction, m));
    }
}

// Digits ...999|000... and ...000|000... and ...999|999... at every split point of the recursion: the binary
// fraction is a little above or below a decimal fraction that ends there.
TEST(ConvertAgainstGmp, RunsOfNinesAndZerosAtTheSplitPoints) {
    Random random(12);
    Exact exact;
    for (const std::uint64_t m : {16u, 17u, 31u, 33u, 64u, 100u, 257u}) {
        PlannedConversion conversion(base, m, one_task);
        const std::uint64_t most = conversion.plan.fraction_words();
        for (std::uint64_t k = 1; k < m; k += (m < 70 ? 1 : 7)) {
            for (const Word last : {base - 1, Word{1}, base / 2}) {
                Words digits(k);
                for (Word& w : digits) w = random.next() % base;
                digits[0] = last;
                if (k > 2 && last == base - 1) digits[1] = base - 1;
                // Up to the last word that the plan looks at.
                const std::uint64_t whole = power_whole_words(base, m);
                for (const std::uint64_t n : {most, most - 2, whole + 1, whole, k + (m - k) / 2 + 2}) {
                    for (const long delta : {1L, 2L, 0L, -1L}) {
                        const Words fraction = exact.fraction(digits, n, delta);
                        const Words expected = exact.digits(fraction, m);
                        // What lies above the boundary by less than two guard words below the last digit
                        // may be cut off on the way: nines instead of zeros, to the end.
                        const Words tail(expected.begin(),
                                         expected.begin() + static_cast<std::ptrdiff_t>(m - k));
                        if (delta > 0 && n >= whole + 2 && tail == Words(m - k, 0)) continue;
                        ASSERT_EQ(top(conversion.convert(fraction)), expected)
                            << m << " words, digits end after " << k << ", " << n << " binary words, "
                            << delta;
                        ASSERT_EQ(conversion.result.status, 0u);
                    }
                }
            }
        }
    }
}

// Decimal fractions that binary words hold exactly end in zeros, wherever they end.
TEST(ConvertAgainstGmp, PowersOfOneHalf) {
    Exact exact;
    for (const std::uint64_t m : {16u, 40u, 129u, 600u}) {
        PlannedConversion conversion(base, m, one_task);
        for (std::uint64_t bits = 1; bits <= 64 * conversion.plan.fraction_words(); bits += 1 + bits / 8) {
            Words fraction((bits + 63) / 64, 0);
            fraction[0] = Word{1} << (-bits & 63);
            ASSERT_EQ(top(conversion.convert(fraction)), exact.digits(fraction, m)) << m << " " << bits;
        }
    }
}

}  // namespace
}  // namespace qmp

#endif
