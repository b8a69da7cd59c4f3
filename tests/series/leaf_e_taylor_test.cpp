// Kernels and leaves of the exponential series against the term by term recurrence.
#include <gtest/gtest.h>

#include <functional>

#include "errors/exception.h"
#include "multiply/basecase/word_kernels.h"
#include "series/leaf_e_taylor.h"
#include "series/leaf_slots.h"
#include "series/series_e_taylor.h"
#include "support/random_words.h"
#ifdef KELVARA_HAVE_GMP
#include <gmp.h>
#endif

namespace qmp {
namespace {

using kelvara_test::expect_sound;
using kelvara_test::Slot;
using kelvara_test::words_of;

struct Sum {
    std::vector<Word> P;
    std::vector<Word> Q;
    bool operator==(const Sum&) const = default;
};

void trim(std::vector<Word>& x) {
    while (!x.empty() && x.back() == 0) x.pop_back();
}

// P = P k +- 1, Q = Q k.
Sum recurrence(bool alternating, std::uint64_t a, std::uint64_t b) {
    const std::size_t n = b - a + 1;
    Sum sum = {std::vector<Word>(n), std::vector<Word>(n)};
    sum.Q[0] = 1;
    for (std::uint64_t i = 1; i <= b - a; i++) {
        mul_word(sum.P.data(), sum.P.data(), n, a + i);
        const std::vector<Word> one = {1};
        if (alternating && i % 2 == 0) {
            const bool borrow = sub_words(sum.P.data(), sum.P.data(), one.data(), 1);
            sub_borrow(sum.P.data() + 1, n - 1, borrow);
        } else {
            const bool carry = add_words(sum.P.data(), sum.P.data(), one.data(), 1);
            add_carry(sum.P.data() + 1, n - 1, carry);
        }
        mul_word(sum.Q.data(), sum.Q.data(), n, a + i);
    }
    trim(sum.P);
    trim(sum.Q);
    return sum;
}

Sum kernel(bool alternating, std::uint64_t a, std::uint64_t b) {
    Slot P(b - a), Q(b - a);
    (alternating ? E_TaylorA_BSR_End_PQ1 : E_TaylorN_BSR_End_PQ1)(P.value, Q.value, a, b);
    expect_sound(P.value);
    expect_sound(Q.value);
    return {words_of(P.value), words_of(Q.value)};
}

Sum leaf(bool alternating, std::uint64_t a, std::uint64_t b, std::uint64_t capacity) {
    Slot P(capacity), Q(capacity);
    sum_e_taylor_leaf(alternating, P.value, Q.value, a, b);
    expect_sound(P.value);
    expect_sound(Q.value);
    return {words_of(P.value), words_of(Q.value)};
}

// The ends at which a word takes a term less: two terms from index 2^21 on, one from 2^32 on.
std::vector<std::uint64_t> interesting_ends() {
    std::vector<std::uint64_t> ends;
    for (int bits = 5; bits < 64; bits++) {
        for (int d = -2; d <= 9; d++) {
            ends.push_back((std::uint64_t{1} << bits) +
                           static_cast<std::uint64_t>(static_cast<std::int64_t>(d)));
        }
    }
    for (std::uint64_t d = 0; d < 12; d++) ends.push_back(UINT64_MAX - d);
    return ends;
}

TEST(ExponentialLeaves, KernelsEqualTheRecurrence) {
    for (const bool alternating : {false, true}) {
        for (std::uint64_t n = 2; n < 8; n++) {
            for (std::uint64_t a = 0; a < 30; a++) {
                EXPECT_EQ(kernel(alternating, a, a + n), recurrence(alternating, a, a + n)) << a << ' ' << n;
            }
            for (const std::uint64_t b : interesting_ends()) {
                EXPECT_EQ(kernel(alternating, b - n, b), recurrence(alternating, b - n, b)) << b << ' ' << n;
            }
        }
    }
}

TEST(ExponentialLeaves, EqualTheRecurrence) {
    kelvara_test::Random random;
    for (const bool alternating : {false, true}) {
        for (std::uint64_t n = 2; n < 16; n++) {
            for (std::uint64_t a = 1; a < 30; a++) {
                EXPECT_EQ(leaf(alternating, a, a + n, 20), recurrence(alternating, a, a + n))
                    << a << ' ' << n;
            }
            for (const std::uint64_t b : interesting_ends()) {
                if (b >> 63) continue;  // a + b is taken in one word
                EXPECT_EQ(leaf(alternating, b - n, b, 20), recurrence(alternating, b - n, b))
                    << b << ' ' << n;
            }
            for (int round = 0; round < 20; round++) {
                const std::uint64_t a = (random.next() >> random.between(2, 60)) + 1;
                EXPECT_EQ(leaf(alternating, a, a + n, 20), recurrence(alternating, a, a + n))
                    << a << ' ' << n;
            }
        }
    }
}

// A long leaf in buffers of less than a word per term goes through its halves, and fits or says so.
TEST(ExponentialLeaves, ShortBuffers) {
    for (const bool alternating : {false, true}) {
        for (const std::uint64_t a : {std::uint64_t{1}, std::uint64_t{1000000}, std::uint64_t{1} << 40}) {
            for (std::uint64_t n = 8; n < 16; n++) {
                const Sum expected = recurrence(alternating, a, a + n);
                EXPECT_EQ(leaf(alternating, a, a + n, n + 1), expected);
                for (std::uint64_t capacity = 1; capacity < n; capacity++) {
                    try {
                        EXPECT_EQ(leaf(alternating, a, a + n, capacity), expected);
                        EXPECT_GE(capacity, expected.Q.size());
                    } catch (const BufferTooSmallException& e) {
                        EXPECT_TRUE(e.function() == "BasicIntR::set_mulB()" ||
                                    e.function() ==
                                        (alternating ? "BasicInt::operator-=()" : "BasicInt::operator+=()") ||
                                    e.function() == "BasicInt::operator+=()")
                            << e.function();
                        EXPECT_EQ(e.buffer_size(), capacity);
                        EXPECT_GT(e.required_size(), capacity);
                    }
                }
            }
        }
    }
}

TEST(ExponentialLeaves, AShortLeafReportsItsKernel) {
    for (const bool alternating : {false, true}) {
        Slot P(4), Q(5);
        try {
            sum_e_taylor_leaf(alternating, P.value, Q.value, 10, 15);
            FAIL();
        } catch (const BufferTooSmallException& e) {
            EXPECT_EQ(e.function(), alternating ? "E_TaylorA_BSR_End_PQ1()" : "E_TaylorN_BSR_End_PQ1()");
            EXPECT_EQ(e.buffer_size(), 4u);
            EXPECT_EQ(e.required_size(), 5u);
        }
    }
}

TEST(ExponentialLeaves, AreTheLeavesOfTheSeries) {
    const MultiplyContext none(ParallelContext::sequential(), nullptr, nullptr, 0);
    for (const bool alternating : {false, true}) {
        Slot words[3] = {Slot(16), Slot(16), Slot(16)};
        Series_e_Taylor::Buffers out;
        for (std::size_t i = 0; i < 3; i++) out[i] = ExactFloat(words[i].words.data(), 16);
        Series_e_Taylor(alternating).leaf(none, out, 99, 112);
        const Sum expected = recurrence(alternating, 99, 112);
        const std::vector<Word>* parts[] = {&expected.P, &expected.Q};
        for (std::size_t i = 0; i < 2; i++) {
            EXPECT_EQ(out[i].exp, 0);
            EXPECT_EQ(out[i].T, out[i].base);
            EXPECT_EQ(words_of({out[i].T, out[i].L, out[i].hash}), *parts[i]);
            expect_sound({out[i].T, out[i].L, out[i].hash});
        }
    }
}

#ifdef KELVARA_HAVE_GMP

TEST(ExponentialLeaves, EqualTheSumOfTheirTerms) {
    for (const bool alternating : {false, true}) {
        for (const std::uint64_t a : {std::uint64_t{1}, std::uint64_t{2097140}, std::uint64_t{4294967285}}) {
            const std::uint64_t b = a + 15;
            mpz_t P, Q, term;
            mpz_inits(P, Q, term, nullptr);
            mpz_set_ui(Q, 1);
            for (std::uint64_t k = a + 1; k <= b; k++) mpz_mul_ui(Q, Q, k);
            mpz_set(term, Q);
            for (std::uint64_t j = a + 1; j <= b; j++) {
                mpz_divexact_ui(term, term, j);
                if (alternating && (j - a) % 2 == 0) {
                    mpz_sub(P, P, term);
                } else {
                    mpz_add(P, P, term);
                }
            }
            const Sum sum = leaf(alternating, a, b, 20);
            for (const auto& [words, expected] : {std::pair(sum.P, P), std::pair(sum.Q, Q)}) {
                std::vector<Word> from_gmp(mpz_size(expected));
                mpz_export(from_gmp.data(), nullptr, -1, sizeof(Word), 0, 0, expected);
                EXPECT_EQ(words, from_gmp);
            }
            mpz_clears(P, Q, term, nullptr);
        }
    }
}

#endif

}  // namespace
}  // namespace qmp
