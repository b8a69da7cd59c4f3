// Short products and merges against those of whole numbers.
#include <gtest/gtest.h>

#include "errors/exception.h"
#include "series/bss_p2b2_bbp.h"
#include "series/exact_sum.h"
#include "series/series_e_taylor.h"
#include "series/short_merge.h"
#include "series/test_series.h"

namespace qmp {
namespace {

using kelvara_test::ExactValue;
using kelvara_test::fill_garbage;
using kelvara_test::make_words;
using kelvara_test::Pattern;
using kelvara_test::Random;

// A number that owns its garbage-filled buffer and the guard word behind it.
class Number {
  public:
    explicit Number(std::uint64_t capacity) : memory_(capacity + 1) {
        fill_garbage(memory_.data(), memory_.size());
        value = ExactFloat(memory_.data(), capacity);
    }
    Number(std::uint64_t capacity, const std::vector<Word>& words, std::int64_t exp, std::uint64_t start = 0)
        : Number(capacity) {
        place(value, words, exp, start);
    }
    ~Number() { EXPECT_EQ(memory_.back(), kelvara_test::garbage); }
    Number(const Number&) = delete;
    Number& operator=(const Number&) = delete;

    static void place(ExactFloat& x, const std::vector<Word>& words, std::int64_t exp, std::uint64_t start) {
        x.T = x.base + start;
        std::copy(words.begin(), words.end(), x.T);
        x.L = words.size();
        x.exp = exp;
        x.hash = check_mul(hash_words(0, binary_word_radix, x.T, x.L), check_word_weight(exp));
    }

    ExactFloat value;

  private:
    std::vector<Word> memory_;
};

void expect_equal(const ExactFloat& x, const ExactFloat& expected) {
    EXPECT_EQ(recheck(ParallelContext::sequential(), x), 0u);
    EXPECT_EQ(x.hash, expected.hash);
    EXPECT_EQ(x.exp, expected.exp);
    EXPECT_EQ(std::vector<Word>(x.T, x.T + x.L), std::vector<Word>(expected.T, expected.T + expected.L));
}

const MultiplyContext& context() {
    static CheckedWords scratch(nullptr, 1 << 20);
    static const MultiplyContext all(ParallelContext::sequential(), &kelvara_test::shared_twiddles(),
                                     scratch.data(), scratch.words());
    return all;
}

std::uint64_t random_length(Random& random) {
    return random.between(1, random.next() % 4 == 0 ? longest_short_product - 1 : 12);
}

TEST(ShortProducts, EndAtTheirLongest) {
    EXPECT_TRUE(is_short_product(longest_short_product - 1, 1));
    EXPECT_TRUE(is_short_product(40, 40));
    EXPECT_FALSE(is_short_product(41, 40));
}

TEST(ShortProducts, EqualTheGeneralProduct) {
    Random random;
    for (int round = 0; round < 500; round++) {
        const std::uint64_t la = random_length(random);
        const std::uint64_t lb = random.between(1, longest_short_product - la);
        const auto pattern = kelvara_test::all_patterns[random.next() % 5];
        const auto a = make_words(random, la, pattern);
        const auto b = make_words(random, lb, kelvara_test::all_patterns[random.next() % 5]);
        const auto ea = static_cast<std::int64_t>(random.between(0, 6)) - 3;
        const auto eb = static_cast<std::int64_t>(random.between(0, 6)) - 3;
        Number x(la, a, ea), y(lb, b, eb), expected(la + lb), apart(la + lb);
        expected.value.set_mul(context(), x.value, y.value);
        set_short_product(apart.value, x.value, y.value);
        expect_equal(apart.value, expected.value);

        // Both in one buffer, the left one anywhere below the right one.
        const std::uint64_t gap = random.between(0, 3);
        Number both(gap + la + std::max(la, lb) + lb, a, ea, gap);
        ExactFloat right(both.value.base + gap + la, both.value.AL - gap - la);
        Number::place(right, b, eb, 0);
        multiply_short_in_place(both.value, right);
        EXPECT_EQ(both.value.T, both.value.base);
        expect_equal(both.value, expected.value);
    }
}

// The sum of a product and a number, as the general operations form it.
void sum_in_steps(Number& result, const Number& a, const Number& b, const Number& c, bool subtract) {
    result.value.set_mul(context(), a.value, b.value);
    if (subtract) {
        subtract_in_place(result.value, c.value);
    } else {
        add_in_place(result.value, c.value);
    }
}

TEST(ShortProducts, SumsEqualTheGeneralSums) {
    Random random;
    int carried = 0;
    for (int round = 0; round < 2000; round++) {
        const std::uint64_t la = random_length(random);
        const std::uint64_t lb = random.between(1, longest_short_product - la);
        const auto pattern = round % 2 ? Pattern::ones : kelvara_test::all_patterns[random.next() % 5];
        const auto a = make_words(random, la, pattern);
        const auto b = make_words(random, lb, pattern);
        // Mostly at one exponent, and often as long as the product or longer.
        const std::int64_t ec =
            random.next() % 4 == 0 ? static_cast<std::int64_t>(random.between(0, 4)) - 2 : 0;
        std::uint64_t lc =
            random.next() % 3 == 0 ? la + lb + random.between(0, 2) : random.between(1, la + lb);
        const bool subtract = random.next() % 2;
        if (subtract) {
            // Below the product's top word, and so below the product.
            const std::int64_t room = static_cast<std::int64_t>(la + lb) - 2 - ec;
            if (room < 1) continue;
            lc = std::min<std::uint64_t>(lc, static_cast<std::uint64_t>(room));
        }
        const std::uint64_t capacity = la + lb + lc + 8;
        Number x(capacity, a, 0), y(lb, b, 0), z(lc, make_words(random, lc, pattern), ec), expected(capacity);
        sum_in_steps(expected, x, y, z, subtract);
        Number both(capacity + la, a, 0);
        ExactFloat right(both.value.base + la, both.value.AL - la);
        Number::place(right, b, 0, 0);
        multiply_short_and_add(both.value, right, z.value, subtract);
        expect_equal(both.value, expected.value);
        carried += both.value.L > la + lb;
    }
    EXPECT_GT(carried, 10);
}

// Runs two ways of the same; both give the same exception, or none.
template <typename Exception, typename First, typename Second>
void expect_same_error(First&& first, Second&& second, const char* function) {
    const auto name_of = [](auto&& call) -> std::string {
        try {
            call();
        } catch (const Exception& e) {
            return e.function();
        }
        return "none";
    };
    EXPECT_EQ(name_of(first), function);
    EXPECT_EQ(name_of(second), function);
}

TEST(ShortProducts, DifferencesThatAreNotPositiveFailLikeTheGeneralOnes) {
    const std::vector<Word> a = {5, 7}, b = {3}, equal = {15, 21}, more = {16, 21}, longer = {0, 0, 1};
    const auto general = [&](const std::vector<Word>& c) {
        return [&a, &b, c] {
            Number x(8, a, 0), y(1, b, 0), z(4, c, 0), result(8);
            sum_in_steps(result, x, y, z, true);
        };
    };
    const auto in_place = [&](const std::vector<Word>& c) {
        return [&a, &b, c] {
            Number x(8, a, 0), y(1, b, 0), z(4, c, 0);
            multiply_short_and_add(x.value, y.value, z.value, true);
        };
    };
    const char* function = "ExactFloat::operator-=()";
    expect_same_error<UnsupportedZeroException>(general(equal), in_place(equal), function);
    expect_same_error<UnsupportedNegativeException>(general(more), in_place(more), function);
    expect_same_error<UnsupportedNegativeException>(general(longer), in_place(longer), function);
}

void expect_capacity_error(const char* function, std::uint64_t present, std::uint64_t needed, auto&& call) {
    try {
        call();
        FAIL() << function;
    } catch (const BufferTooSmallException& e) {
        EXPECT_EQ(e.function(), function);
        EXPECT_EQ(e.buffer_size(), present);
        EXPECT_EQ(e.required_size(), needed);
    }
}

TEST(ShortProducts, CapacityErrorsAreThoseOfTheGeneralOperations) {
    Random random;
    const auto a = make_words(random, 3, Pattern::ones);
    const auto b = make_words(random, 4, Pattern::ones);
    Number y(4, b, 0), z(7, make_words(random, 7, Pattern::ones), 0);
    for (const bool subtract : {false, true}) {
        Number x(6, a, 0), destination(6);
        expect_capacity_error("ExactFloat::set_mul()", 6, 7,
                              [&] { set_short_product(destination.value, x.value, y.value); });
        expect_capacity_error("ExactFloat::set_mul()", 6, 7,
                              [&] { multiply_short_in_place(x.value, y.value); });
        expect_capacity_error("ExactFloat::set_mul()", 6, 7,
                              [&] { multiply_short_and_add(x.value, y.value, z.value, subtract); });
        Number exact(7, a, 0);
        expect_capacity_error(subtract ? "subtract_in_place()" : "add_in_place()", 7, 8,
                              [&] { multiply_short_and_add(exact.value, y.value, z.value, subtract); });
    }
}

// Merges at every length around the longest short product, right half above left half, with low zero words to
// strip; the reference is made of general products.
template <typename Series>
class Halves {
  public:
    static constexpr std::size_t outputs = Series::output_count;

    Halves(Random& random, const std::vector<std::uint64_t>& lengths) {
        std::uint64_t used = 0;
        for (std::size_t i = 0; i < outputs; i++) used = std::max(used, lengths[i]);
        for (std::size_t i = 0; i < Series::buffer_count; i++) {
            memory_.push_back(std::make_unique<Number>(400));
            whole[i] = memory_[i]->value;
            right[i] = ExactFloat(whole[i].base + used, whole[i].AL - used);
        }
        for (std::size_t i = 0; i < outputs; i++) {
            fill(random, whole[i], left_copies_, lengths[i]);
            fill(random, right[i], right_copies_, lengths[outputs + i]);
        }
    }
    const ExactFloat& left_copy(std::size_t i) const { return left_copies_[i]->value; }
    const ExactFloat& right_copy(std::size_t i) const { return right_copies_[i]->value; }

    typename Series::Buffers whole;
    typename Series::Buffers right;

  private:
    static void fill(Random& random, ExactFloat& x, std::vector<std::unique_ptr<Number>>& copies,
                     std::uint64_t length) {
        auto words = make_words(random, length, kelvara_test::all_patterns[random.next() % 5]);
        if (length > 10) std::fill_n(words.begin(), random.between(0, 9), Word{0});
        Number::place(x, words, 0, 0);
        copies.push_back(std::make_unique<Number>(length, words, 0));
    }
    std::vector<std::unique_ptr<Number>> memory_;
    std::vector<std::unique_ptr<Number>> left_copies_;
    std::vector<std::unique_ptr<Number>> right_copies_;
};

ExactValue general_product(const ExactFloat& a, const ExactFloat& b) {
    Number product(a.L + b.L);
    product.value.set_mul(context(), a, b);
    return ExactValue::of(product.value);
}

ExactValue general_sum(const ExactFloat& a, const ExactFloat& b, const ExactFloat& c, const ExactFloat& d,
                       bool subtract) {
    Number ab(a.L + b.L + c.L + d.L + 8), cd(c.L + d.L);
    ab.value.set_mul(context(), a, b);
    cd.value.set_mul(context(), c, d);
    if (subtract) {
        subtract_in_place(ab.value, cd.value);
    } else {
        add_in_place(ab.value, cd.value);
    }
    return ExactValue::of(ab.value);
}

void expect_merged(const ExactFloat& x, const ExactValue& expected, bool stripped) {
    EXPECT_EQ(recheck(ParallelContext::sequential(), x), 0u);
    EXPECT_EQ(ExactValue::of(x), expected);
    if (stripped) {
        std::uint64_t zeros = 0;
        while (x.T[zeros] == 0) zeros++;
        EXPECT_LT(zeros, 8u);
    } else {
        EXPECT_EQ(x.T, x.base);
    }
}

// P, Q and R lengths of a left and a right half whose longest product has about `n` words.
std::vector<std::uint64_t> half_lengths(Random& random, std::uint64_t n, std::size_t outputs) {
    const std::uint64_t left = random.between(2, n - 2);
    const std::uint64_t right = n - left;
    std::vector<std::uint64_t> lengths;
    for (const std::uint64_t half : {left, right}) {
        lengths.push_back(half);
        lengths.push_back(half);
        if (outputs == 3) lengths.push_back(random.between(1, half));
    }
    return lengths;
}

TEST(ShortMerges, OfThreeOutputsEqualGeneralProducts) {
    Random random;
    for (std::uint64_t n = 4; n < longest_short_product + 8; n++) {
        for (int round = 0; round < 6; round++) {
            Halves<BSS_P2B3_Type0> halves(random, half_lengths(random, n, 3));
            const auto P = general_sum(halves.left_copy(0), halves.right_copy(1), halves.left_copy(2),
                                       halves.right_copy(0), false);
            const auto Q = general_product(halves.left_copy(1), halves.right_copy(1));
            const auto R = general_product(halves.left_copy(2), halves.right_copy(2));
            BSS_P2B3_Type0::merge(context(), halves.whole, halves.right, false);
            expect_merged(halves.whole[0], P, false);
            expect_merged(halves.whole[1], Q, true);
            expect_merged(halves.whole[2], R, true);
        }
    }
}

TEST(ShortMerges, OfTwoOutputsEqualGeneralProducts) {
    Random random;
    for (std::uint64_t n = 4; n < longest_short_product + 8; n++) {
        for (int round = 0; round < 6; round++) {
            Halves<BSS_P2B2_BBP> halves(random, half_lengths(random, n, 2));
            const auto P = general_sum(halves.left_copy(0), halves.right_copy(1), halves.left_copy(1),
                                       halves.right_copy(0), false);
            const auto Q = general_product(halves.left_copy(1), halves.right_copy(1));
            BSS_P2B2_BBP::merge(context(), halves.whole, halves.right, false);
            expect_merged(halves.whole[0], P, false);
            expect_merged(halves.whole[1], Q, true);
        }
    }
}

TEST(ShortMerges, OfTheExponentialSeriesEqualGeneralProducts) {
    Random random;
    const std::vector<Word> one = {1};
    for (std::uint64_t n = 4; n < longest_short_product + 8; n++) {
        for (int round = 0; round < 6; round++) {
            Halves<Series_e_Taylor> halves(random, half_lengths(random, n, 2));
            const Number unit(1, one, 0);
            // P1 is shorter than the product, so the difference is positive.
            const bool subtract = round % 2;
            const auto P = general_sum(halves.left_copy(0), halves.right_copy(1), halves.right_copy(0),
                                       unit.value, subtract);
            const auto Q = general_product(halves.left_copy(1), halves.right_copy(1));
            Series_e_Taylor::merge(context(), halves.whole, halves.right, subtract);
            expect_merged(halves.whole[0], P, false);
            expect_merged(halves.whole[1], Q, true);
        }
    }
}

// No merge of short products needs scratch.
TEST(ShortMerges, TakeNoScratch) {
    Random random;
    const MultiplyContext none(ParallelContext::sequential(), nullptr, nullptr, 0);
    Halves<BSS_P2B3_Type0> halves(random, half_lengths(random, longest_short_product, 3));
    BSS_P2B3_Type0::merge(none, halves.whole, halves.right, false);
    EXPECT_EQ(recheck(ParallelContext::sequential(), halves.whole[0]), 0u);
    Halves<BSS_P2B3_Type0> longer(random, half_lengths(random, longest_short_product + 8, 3));
    EXPECT_THROW(BSS_P2B3_Type0::merge(none, longer.whole, longer.right, false), BufferTooSmallException);
}

}  // namespace
}  // namespace qmp
