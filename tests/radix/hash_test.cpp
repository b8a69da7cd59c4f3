#include "radix/hash.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "radix/digit_codecs.h"
#include "radix/thread_per_task.h"
#include "support/random_words.h"

namespace qmp {
namespace {

using kelvara_test::all_patterns;
using kelvara_test::make_words;
using kelvara_test::Random;

// One word after the other, by the compiler's own division.
std::uint64_t naive(std::uint64_t h, DoubleWord radix, const std::vector<Word>& words) {
    const DoubleWord m = check_modulus;
    DoubleWord value = h;
    for (std::size_t i = words.size(); i-- > 0;) value = (value * (radix % m) + words[i]) % m;
    return static_cast<std::uint64_t>(value);
}

TEST(HashWords, AnEmptyArrayReturnsTheStart) {
    EXPECT_EQ(hash_words(0, binary_word_radix, nullptr, 0), 0u);
    EXPECT_EQ(hash_words(123456789, decimal_word_radix, nullptr, 0), 123456789u);
    EXPECT_EQ(hash_words(ParallelContext::sequential(), 5, binary_word_radix, nullptr, 0), 5u);
}

TEST(HashWords, RadixConstants) {
    EXPECT_EQ(binary_word_radix, (DoubleWord{1} << 64) % check_modulus);
    EXPECT_EQ(decimal_word_radix, decimal_word_base % check_modulus);
}

TEST(HashWords, EqualsTheNaiveSum) {
    Random random(1);
    for (std::uint64_t n = 1; n < 70; ++n) {
        for (const auto pattern : all_patterns) {
            const auto words = make_words(random, n, pattern);
            const std::uint64_t h0 = random.next() % check_modulus;
            EXPECT_EQ(hash_words(h0, binary_word_radix, words.data(), n),
                      naive(h0, DoubleWord{1} << 64, words));
            EXPECT_EQ(hash_words(h0, decimal_word_radix, words.data(), n),
                      naive(h0, decimal_word_base, words));
        }
    }
}

// The multiples of the modulus hash to 0, never to the modulus.
TEST(HashWords, StaysBelowTheModulus) {
    const std::vector<Word> modulus = {check_modulus};
    EXPECT_EQ(hash_words(0, binary_word_radix, modulus.data(), 1), 0u);
    const std::vector<Word> twice = {~Word{0} - 1, 0, 0, 0};
    EXPECT_EQ(hash_words(0, binary_word_radix, twice.data(), 4), (~Word{0} - 1) % check_modulus);
}

TEST(HashWords, TheParallelFormEqualsTheSequentialOne) {
    kelvara_test::ThreadPerTask threads;
    Random random(2);
    for (const std::uint64_t n : {9999u, 10000u, 10001u, 19999u, 20000u, 20001u, 25000u, 100003u}) {
        const auto words =
            make_words(random, n, n % 2 ? kelvara_test::Pattern::uniform : kelvara_test::Pattern::ones);
        const std::uint64_t h0 = random.next() % check_modulus;
        const std::uint64_t expected = naive(h0, decimal_word_base, words);
        for (const std::uint64_t tasks : {1u, 2u, 3u, 7u, 64u, 1000u}) {
            EXPECT_EQ(hash_words(threads.context(tasks), h0, decimal_word_radix, words.data(), n), expected)
                << n << " words, " << tasks << " tasks";
        }
    }
}

TEST(HashWords, AtMostSixtyFourBlocksOfAtLeastTenThousandWords) {
    kelvara_test::ThreadPerTask threads;
    const std::vector<Word> words(64 * parallel_hash_threshold + 64, 3);
    hash_words(threads.context(1000), 0, binary_word_radix, words.data(), words.size());
    EXPECT_EQ(threads.tasks_run(), 64u);
    threads.forget();
    hash_words(threads.context(1000), 0, binary_word_radix, words.data(), 30000);
    EXPECT_EQ(threads.tasks_run(), 3u);
    threads.forget();
    hash_words(threads.context(1000), 0, binary_word_radix, words.data(), 9999);
    EXPECT_EQ(threads.tasks_run(), 0u);
}

TEST(HashDigits, EqualsTheNaiveSum) {
    Random random(3);
    EXPECT_EQ(hash_digits(77, ""), 77u);
    for (std::size_t n = 1; n < 100; ++n) {
        std::string digits;
        std::uint64_t expected = n;
        for (std::size_t i = 0; i < n; ++i) {
            digits += static_cast<char>('0' + random.between(0, 9));
            expected = naive(expected, 10, {static_cast<Word>(digits.back() - '0')});
        }
        EXPECT_EQ(hash_digits(n, digits), expected) << digits;
    }
}

TEST(HashDigits, NinesAndHexadecimalDigits) {
    std::uint64_t nines = 0;
    std::uint64_t letters = 0;
    for (int i = 0; i < 200; ++i) {
        nines = naive(nines, 10, {9});
        letters = naive(letters, 10, {15});
    }
    EXPECT_EQ(hash_digits(0, std::string(200, '9')), nines);
    EXPECT_EQ(hash_digits(0, std::string(200, 'f')), letters);
}

// Digits and the words that hold them hash alike.
TEST(HashDigits, AgreesWithTheWordHash) {
    Random random(4);
    auto words = make_words(random, 50);
    for (auto& w : words) w %= decimal_word_base;
    std::string digits(50 * 19, ' ');
    u64_to_d19_text(digits.data(), words.data(), 50);
    EXPECT_EQ(hash_digits(0, digits), hash_words(0, decimal_word_radix, words.data(), 50));
}

}  // namespace
}  // namespace qmp
