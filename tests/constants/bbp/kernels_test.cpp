// The digit extractor's kernels on every instruction-set level, against integers of 128 bits.
#include "constants/bbp/kernels/kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <string>
#include <vector>

#include "constants/bbp/bbp_reference.h"
#include "constants/bbp/block_sum.h"
#include "constants/bbp/levels.h"
#include "constants/bbp/settings.h"
#include "support/levels.h"
#include "support/random_words.h"

namespace kelvara::bbp {
namespace {

using kelvara_test::Random;
using kelvara_test::ReferenceSum;

class BbpKernels : public kelvara_test::LevelTest {
  protected:
    // The terms from `first` on, as one block, in as many words.
    static void expect_exact(const Term& term, std::uint64_t first, std::uint64_t count,
                             std::uint64_t words) {
        BlockSum sum(current_kernels(), words);
        sum.add(term, first, first + count);
        ReferenceSum reference(sum.fraction().chunks());
        for (std::uint64_t k = first; k < first + count; ++k) {
            reference.add(term.exponent + term.step * static_cast<std::int64_t>(k),
                          term.alpha * k + term.beta);
        }
        ASSERT_EQ(kelvara_test::digits_of(sum.fraction()), reference.digits())
            << "2^(" << term.step << "k + " << term.exponent << ") / (" << term.alpha << "k + " << term.beta
            << "), k = " << first << " + " << count;
    }
};

TEST_P(BbpKernels, ModuliNearTheLimit) {
    Random random(1);
    for (std::uint64_t i = 0; i < 40 * kelvara_test::multiplier(); ++i) {
        // Up to 60 terms, of which the last one is at most a few below the limit.
        const std::uint64_t count = random.between(1, 60), alpha = random.between(1, 10) * 2;
        const std::uint64_t last = modulus_limit - 1 - 2 * random.between(0, i % 2 == 0 ? 3 : 1 << 20);
        const auto exponent = static_cast<std::int64_t>(random.between(20 * count, std::uint64_t{1} << 48));
        expect_exact({alpha, last - alpha * (count - 1), i % 3 == 0 ? -4 : -20, exponent, true}, 0, count, 6);
    }
}

TEST_P(BbpKernels, ModuliOfEverySize) {
    Random random(2);
    for (int bits = 1; bits <= 48; ++bits) {
        const std::uint64_t modulus = (random.next() >> (64 - bits)) | 1;
        const auto exponent = static_cast<std::int64_t>(random.between(1000, std::uint64_t{1} << 48));
        expect_exact({8, modulus, -4, exponent, true}, 0, 1 + random.next() % 10, 6);
    }
}

// The bits of the exponents change in number within a batch, and are few, odd and even in number.
TEST_P(BbpKernels, ExponentsOfEverySize) {
    Random random(3);
    for (int bits = 0; bits <= 48; ++bits) {
        const std::int64_t power = std::int64_t{1} << bits;
        for (const std::int64_t exponent : {power - 1, power, power + 100}) {
            expect_exact(
                {2, random.between(0, std::uint64_t{1} << (bits % 48)) * 2 + 1, -20, exponent, false}, 0, 7,
                6);
        }
    }
}

TEST_P(BbpKernels, TheFirstTermsOfEverySeries) {
    for (const Formula formula : {Formula::plouffe, Formula::bellard}) {
        for (const std::uint64_t offset : {0, 1, 100}) {
            for (const Term& term : terms(formula, offset)) {
                expect_exact(term, 0, terms_needed(formula, offset, 8), 3);
            }
        }
    }
}

// Powers to small terms, and to the end of the precision and beyond.
TEST_P(BbpKernels, TheLastTermsOfEverySeries) {
    for (const Formula formula : {Formula::plouffe, Formula::bellard}) {
        for (const Term& term : terms(formula, largest_offset)) {
            expect_exact(term, count_of_powers(term) - 3, 60, 10);
        }
    }
}

TEST_P(BbpKernels, TheLargestOffset) {
    Random random(4);
    for (const Formula formula : {Formula::plouffe, Formula::bellard}) {
        for (const Term& term : terms(formula, largest_offset)) {
            ASSERT_TRUE(within_limit(term, terms_needed(formula, largest_offset, largest_digits)));
            expect_exact(term, 0, 2, 6);
            expect_exact(term, random.between(0, count_of_powers(term) - 3), 3, 6);
        }
    }
}

// One more or less than a number of batches of any level.
TEST_P(BbpKernels, EveryCount) {
    for (std::uint64_t count = 1; count <= 50; ++count) {
        expect_exact({8, 5, -4, 4000, false}, 100, count, 2);
        expect_exact({8, 5, -20, -4000, false}, 100, count, 300);
    }
}

TEST_P(BbpKernels, LengthsOfTheFraction) {
    for (std::uint64_t words = 2; words <= 12; ++words) expect_exact({4, 3, -4, 30, false}, 0, 30, words);
}

// As many equal terms as sums may have, with a leading digit as large as a signed one gets.
TEST_P(BbpKernels, AFullBlockOfTheLargestDigits) {
    constexpr std::uint64_t modulus = modulus_limit - 3;
    std::uint64_t exponent = 64;
    while (kelvara_test::power_of_two_modulo(exponent, modulus) / (modulus / 1000) != 499) ++exponent;
    TermRun run;
    run.modulus = static_cast<double>(modulus);
    run.squarings = static_cast<int>(std::bit_width(exponent)) - 6;
    run.exponent = exponent << (52 - run.squarings);
    run.count = most_terms_of_sums;
    const Kernels& kernels = current_kernels();
    std::vector<std::uint64_t> sums(4 * kernels.lanes);
    kernels.add_powers(run, 4, sums.data());
    ChunkFraction whole(6);
    whole.take(sums, kernels.lanes);
    EXPECT_EQ(std::ranges::count(sums, 0u), static_cast<std::ptrdiff_t>(sums.size()));

    ReferenceSum reference(4);
    for (std::uint64_t i = 0; i < most_terms_of_sums; ++i)
        reference.add(static_cast<std::int64_t>(exponent), modulus);
    EXPECT_EQ(kelvara_test::digits_of(whole), reference.digits());
}

INSTANTIATE_EVERY_LEVEL(BbpKernels);

TEST(BbpLevels, HaveAKernelEach) {
    EXPECT_EQ(kernel_names(), (std::vector<std::string>{"f64v1_AVX512", "f64v1_AVX2", "f64v1_XOP",
                                                        "f64v1_SSE2", "f64v1_Native"}));
    kelvara_test::for_every_level([](qmp::InstructionLevel level) {
        EXPECT_EQ(current_kernels().name, kernel_names()[static_cast<std::size_t>(level)]);
    });
}

}  // namespace
}  // namespace kelvara::bbp
