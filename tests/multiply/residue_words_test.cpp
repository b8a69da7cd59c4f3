#include "multiply/residue_words.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "platform/parallel/push_pool_parallelizer.h"
#include "support/random_words.h"
#include "support/residues_reference.h"
#include "support/words_reference.h"

namespace {

using kelvara_test::cyclic_residue;
using kelvara_test::GuardedWords;
using kelvara_test::negacyclic_residue;
using kelvara_test::Pattern;
using kelvara_test::Random;
using kelvara_test::ReferenceResidue;
using qmp::ParallelContext;
using qmp::Word;
using Words = std::vector<Word>;

constexpr Word ones = ~Word{0};
constexpr Word half = Word{1} << 63;
constexpr Word nasty[] = {0, 1, 2, half - 1, half, ones - 1, ones};

// Every number of `length` words that are all nasty.
template <typename Visit>
void for_nasty_numbers(std::uint64_t length, Visit visit) {
    Words number(length);
    std::vector<std::size_t> choice(length, 0);
    for (;;) {
        for (std::uint64_t i = 0; i < length; ++i) number[i] = nasty[choice[i]];
        visit(number);
        std::uint64_t i = 0;
        while (i < length && ++choice[i] == std::size(nasty)) choice[i++] = 0;
        if (i == length) return;
    }
}

bool all_ones(const Words& words) {
    return words == Words(words.size(), ones);
}

Words recombined(ParallelContext parallel, Words x, ReferenceResidue y, std::uint64_t first,
                 std::uint64_t end) {
    Words product((end - first + 7) / 8 + 1, kelvara_test::garbage);
    qmp::recombine(parallel, product.data(), first, end, x.data(), y.words.data(), y.degenerate, x.size());
    return product;
}

void expect_recombined(ParallelContext parallel, const Words& product, std::uint64_t n) {
    const ReferenceResidue y = negacyclic_residue(product, n);
    Words x = cyclic_residue(product, n).words;
    Words expected = product;
    expected.push_back(kelvara_test::garbage);
    ASSERT_EQ(recombined(parallel, x, y, 0, 16 * n), expected);
    if (x == Words(n, 0)) {
        ASSERT_EQ(recombined(parallel, Words(n, ones), y, 0, 16 * n), expected) << "the other zero";
    }
}

// By small numbers of words, where the residues are easily told: R = 2^64, n = 1.
TEST(ResiduesReference, SmallCases) {
    EXPECT_EQ(cyclic_residue({5, 7}, 1).words, Words{12});
    EXPECT_EQ(cyclic_residue({ones, 0}, 1).words, Words{0});
    EXPECT_EQ(cyclic_residue({ones, ones}, 1).words, Words{0});
    EXPECT_EQ(cyclic_residue({ones, 1}, 1).words, Words{1});
    EXPECT_EQ(negacyclic_residue({5, 7}, 1).words, Words{ones});
    EXPECT_TRUE(negacyclic_residue({0, 1}, 1).degenerate);
    EXPECT_TRUE(negacyclic_residue({6, 7}, 1).degenerate);
    EXPECT_EQ(negacyclic_residue({0, 2}, 1).words, Words{ones});
    EXPECT_EQ(negacyclic_residue({0, ones}, 1).words, Words{2});
}

TEST(ResidueWords, RecombineNastyNumbers) {
    for (std::uint64_t n : {1, 2, 3}) {
        for_nasty_numbers(2 * n, [n](const Words& product) {
            if (!all_ones(product)) expect_recombined(ParallelContext::sequential(), product, n);
        });
    }
}

TEST(ResidueWords, RecombineWindows) {
    Random random(1);
    for (std::uint64_t n : {1, 2, 5, 127, 128, 129, 300}) {
        const Words product = make_words(random, 2 * n, Pattern::runs);
        const auto* bytes = reinterpret_cast<const unsigned char*>(product.data());
        for (int round = 0; round < 200; ++round) {
            const std::uint64_t end = random.between(0, 16 * n), first = random.between(0, end);
            const Words window = recombined(ParallelContext::sequential(), cyclic_residue(product, n).words,
                                            negacyclic_residue(product, n), first, end);
            const auto* found = reinterpret_cast<const unsigned char*>(window.data());
            ASSERT_EQ(std::memcmp(found, bytes + first, end - first), 0) << first << " to " << end;
            const Words untouched(window.size(), kelvara_test::garbage);
            ASSERT_EQ(std::memcmp(found + (end - first),
                                  reinterpret_cast<const unsigned char*>(untouched.data()) + (end - first),
                                  8 * window.size() - (end - first)),
                      0);
        }
    }
}

// Long enough for several blocks, with carries that cross all of them.
TEST(ResidueWords, RecombineByTasks) {
    qmp::PushPoolParallelizer pool;
    Random random(2);
    constexpr std::uint64_t n = 70001;
    std::vector<Words> products = {make_words(random, 2 * n), make_words(random, 2 * n, Pattern::runs)};
    Words low_half = make_words(random, n, Pattern::runs);  // both residues are the same
    low_half.resize(2 * n, 0);
    products.push_back(low_half);
    Words complementary(2 * n, 0);  // x + y is all ones but for the lowest bits
    complementary[0] = 4;
    for (std::uint64_t i = n; i < 2 * n; ++i) complementary[i] = ones;
    products.push_back(complementary);
    complementary[n - 1] = half;
    complementary[2 * n - 1] = half - 1;
    products.push_back(complementary);
    products.push_back(Words(2 * n, 0));
    Words almost_ones(2 * n, ones);
    almost_ones[0] = ones - 1;
    products.push_back(almost_ones);
    for (const Words& product : products) {
        for (std::uint64_t tasks : {1, 2, 3, 8}) {
            expect_recombined(ParallelContext{tasks, &pool}, product, n);
        }
    }
}

void expect_folded(ParallelContext parallel, const Words& number, std::uint64_t n) {
    GuardedWords cyclic(n), negacyclic(n);
    qmp::fold_cyclic(parallel, cyclic.data(), number.data(), 8 * number.size(), n);
    // Modulo R^n - 1 both zeros are good.
    const Words found = cyclic.value();
    ASSERT_EQ(all_ones(found) ? Words(n, 0) : found, cyclic_residue(number, n).words);
    const bool degenerate =
        qmp::fold_negacyclic(parallel, negacyclic.data(), number.data(), 8 * number.size(), n);
    ASSERT_EQ((ReferenceResidue{negacyclic.value(), degenerate}), negacyclic_residue(number, n));
    ASSERT_TRUE(cyclic.guards_intact() && negacyclic.guards_intact());
}

TEST(ResidueWords, FoldNastyNumbers) {
    for (std::uint64_t n : {1, 2, 3}) {
        for (std::uint64_t length = 1; length <= std::min<std::uint64_t>(2 * n, 5); ++length) {
            for_nasty_numbers(length, [n](const Words& number) {
                expect_folded(ParallelContext::sequential(), number, n);
            });
        }
    }
}

TEST(ResidueWords, FoldByTasks) {
    qmp::PushPoolParallelizer pool;
    Random random(3);
    constexpr std::uint64_t n = 70001;
    for (std::uint64_t length : {n + 1, n + 30000, 2 * n - 1, 2 * n}) {
        std::vector<Words> numbers = {make_words(random, length), make_words(random, length, Pattern::runs),
                                      make_words(random, length, Pattern::ones)};
        Words minus_one(length, 0);  // R^n
        minus_one[n] = 1;
        numbers.push_back(minus_one);
        Words long_borrow(length, 0);
        long_borrow[length - 1] = 1;
        numbers.push_back(long_borrow);
        for (const Words& number : numbers) {
            for (std::uint64_t tasks : {1, 2, 8}) expect_folded(ParallelContext{tasks, &pool}, number, n);
        }
    }
}

// 32-bit words end in the middle of a word.
TEST(ResidueWords, FoldOddBytes) {
    Random random(4);
    for (std::uint64_t n : {1, 3, 200}) {
        for (std::uint64_t bytes = 4; bytes <= 16 * n; bytes += 4) {
            Words number = make_words(random, 2 * n, Pattern::runs);
            Words cut((bytes + 7) / 8, 0);
            std::memcpy(cut.data(), number.data(), bytes);
            GuardedWords folded(n);
            const bool degenerate =
                qmp::fold_negacyclic(ParallelContext::sequential(), folded.data(), number.data(), bytes, n);
            ASSERT_EQ((ReferenceResidue{folded.value(), degenerate}), negacyclic_residue(cut, n));
        }
    }
}

TEST(ResidueWords, Negate) {
    for (std::uint64_t n : {1, 2, 3}) {
        for (std::uint64_t length = 1; length <= n; ++length) {
            for_nasty_numbers(length, [&](const Words& number) {
                GuardedWords negated(n);
                const bool degenerate = qmp::negate_negacyclic(negated.data(), number.data(), 8 * length, n);
                // b * R^n is -b.
                Words shifted(n, 0);
                shifted.insert(shifted.end(), number.begin(), number.end());
                ASSERT_EQ((ReferenceResidue{negated.value(), degenerate}), negacyclic_residue(shifted, n));
                ASSERT_TRUE(negated.guards_intact());
            });
        }
    }
}

}  // namespace
