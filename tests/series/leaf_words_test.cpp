// Fixed-width integers and unreduced residues of the leaves.
#include <gtest/gtest.h>

#include "multiply/basecase/word_kernels.h"
#include "numbers/check_value.h"
#include "series/leaf_residue.h"
#include "series/leaf_words.h"
#include "support/random_words.h"
#ifdef KELVARA_HAVE_GMP
#include <gmp.h>
#endif

namespace qmp::leaf {
namespace {

using kelvara_test::make_words;
using kelvara_test::Random;

// Word by word, with the general kernels.
std::vector<Word> reference_product(const std::vector<Word>& a, const std::vector<Word>& b) {
    std::vector<Word> result(a.size() + b.size());
    for (std::size_t j = 0; j < b.size(); j++) {
        result[a.size() + j] = mul_add_word(result.data() + j, a.data(), a.size(), b[j]);
    }
    return result;
}

// The operand's width with garbage-free top words that are zero, so that a narrower product is whole.
std::vector<Word> short_operand(Random& random, int width, int zero_words, kelvara_test::Pattern pattern) {
    std::vector<Word> words = make_words(random, static_cast<std::uint64_t>(width - zero_words), pattern);
    words.resize(static_cast<std::size_t>(width));
    return words;
}

template <int Width, int La, int Lb>
void expect_product(const std::vector<Word>& a, const std::vector<Word>& b) {
    std::vector<Word> whole = reference_product(a, b);
    for (int i = Width; i < La + Lb; i++) ASSERT_EQ(whole[static_cast<std::size_t>(i)], 0u);
    whole.resize(Width);
    std::vector<Word> result(Width + 1);
    kelvara_test::fill_garbage(result.data(), result.size());
    product<Width, La, Lb>(result.data(), a.data(), b.data());
    EXPECT_EQ(result.back(), kelvara_test::garbage);
    result.pop_back();
    EXPECT_EQ(result, whole) << La << " x " << Lb << " -> " << Width;
}

template <int La, int Lb>
void test_product() {
    Random random(La * 100 + Lb);
    for (const auto pattern : kelvara_test::all_patterns) {
        for (int round = 0; round < 3; round++) {
            const auto a = short_operand(random, La, 0, pattern);
            const auto b = short_operand(random, Lb, 0, pattern);
            expect_product<La + Lb, La, Lb>(a, b);
            expect_product<La + Lb, La, Lb>(a, make_words(random, Lb, kelvara_test::Pattern::ones));
            // A word of the product less, as far as it still holds either operand.
            if constexpr (La > 1)
                expect_product<La + Lb - 1, La, Lb>(short_operand(random, La, 1, pattern), b);
            if constexpr (La > 2 && Lb > 1) {
                expect_product<La + Lb - 2, La, Lb>(short_operand(random, La, 2, pattern), b);
            }
        }
    }
}

template <int La, int... Lb>
void test_products_with(std::integer_sequence<int, Lb...>) {
    (test_product<La, Lb + 1>(), ...);
}

// Every shape up to eight words, which covers the inline, the straight-line and the looped products.
TEST(LeafWords, ProductsOfEveryShape) {
    constexpr auto lengths = std::make_integer_sequence<int, 8>();
    static_assert(8 * 8 >= smallest_looped_product && 3 * 3 >= largest_inline_product);
    [&]<int... La>(std::integer_sequence<int, La...>) {
        (test_products_with<La + 1>(lengths), ...);
    }
    (lengths);
    test_product<9, 10>();
    test_product<14, 14>();
}

template <int Width>
void test_sums() {
    Random random(Width);
    for (const auto pattern : kelvara_test::all_patterns) {
        auto a = make_words(random, Width, pattern);
        auto b = make_words(random, Width, kelvara_test::Pattern::runs);
        // The carry runs through everything: a = -1 - b + 1.
        std::vector<Word> minus_b(Width), ones(Width, ~Word{0});
        sub_words(minus_b.data(), ones.data(), b.data(), Width);
        for (std::vector<Word> x : {a, minus_b, ones}) {
            std::vector<Word> sum(Width), difference(Width);
            add_words(sum.data(), x.data(), b.data(), Width);
            std::vector<Word> y = x;
            y.push_back(kelvara_test::garbage);
            add<Width>(y.data(), b.data());
            EXPECT_EQ(y.back(), kelvara_test::garbage);
            y.pop_back();
            EXPECT_EQ(y, sum) << Width;
            subtract<Width>(y.data(), b.data());
            EXPECT_EQ(y, x) << Width;
            // Borrows from nothing but zeros.
            y.assign(Width, 0);
            y.back() = 1;
            std::vector<Word> one(Width), expected(Width);
            one[0] = 1;
            sub_words(expected.data(), y.data(), one.data(), Width);
            subtract<Width>(y.data(), one.data());
            EXPECT_EQ(y, expected) << Width;
        }
    }
}

TEST(LeafWords, SumsAndDifferencesOfEveryWidth) {
    []<int... i>(std::integer_sequence<int, i...>) {
        (test_sums<i + 1>(), ...);
    }
    (std::make_integer_sequence<int, 20>());
}

constexpr std::uint64_t residue_limit = check_modulus + 9;

TEST(LeafResidues, StayBelowTheirLimitAndAreCongruent) {
    Random random;
    std::vector<std::uint64_t> values = {0, 1, 2, check_modulus - 1, check_modulus, residue_limit - 1};
    for (int i = 0; i < 20; i++) values.push_back(random.next() % residue_limit);
    const auto expect_residue = [](std::uint64_t x, std::uint64_t expected) {
        EXPECT_LT(x, residue_limit);
        EXPECT_EQ(check_reduce(x), expected);
    };
    for (const Word w : {Word{0}, check_modulus, check_modulus + 1, ~Word{0}, ~Word{0} - 7}) {
        expect_residue(residue(w), w % check_modulus);
    }
    const DoubleWord largest = (static_cast<DoubleWord>(1) << 124) - 1;
    for (const DoubleWord x : {DoubleWord{0}, largest, largest - check_modulus, largest / 3}) {
        expect_residue(residue(x), static_cast<std::uint64_t>(x % check_modulus));
    }
    for (const std::uint64_t a : values) {
        for (const std::uint64_t b : values) {
            const std::uint64_t ab = check_mul(check_reduce(a), check_reduce(b));
            expect_residue(residue_product(a, b), ab);
            for (const std::uint64_t c : values) {
                const std::uint64_t cb = check_mul(check_reduce(c), check_reduce(b));
                expect_residue(residue_sum(a, b, c, b), check_add(ab, cb));
                expect_residue(residue_difference(a, b, c, b), check_sub(ab, cb));
            }
        }
    }
}

#ifdef KELVARA_HAVE_GMP

TEST(LeafWords, ProductsAgreeWithGmp) {
    Random random;
    for (const auto pattern : kelvara_test::all_patterns) {
        const auto a = make_words(random, 6, pattern);
        const auto b = make_words(random, 5, pattern);
        std::vector<Word> expected(11), result(11);
        mpn_mul(expected.data(), a.data(), 6, b.data(), 5);
        product<11, 6, 5>(result.data(), a.data(), b.data());
        EXPECT_EQ(result, expected);
    }
}

#endif

}  // namespace
}  // namespace qmp::leaf
