// The straight-line leaves of the pi series against the general bisection, term by term recurrences, and each
// other's bounds.
#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <tuple>

#include "constants/pi_formulas.h"
#include "constants/pi_terms.h"
#include "errors/exception.h"
#include "series/leaf_bisection.h"
#include "series/leaf_slots.h"
#include "support/random_words.h"
#ifdef KELVARA_HAVE_GMP
#include <gmp.h>
#endif

namespace kelvara {
namespace {

using kelvara_test::expect_sound;
using kelvara_test::Slot;
using kelvara_test::words_of;
using qmp::BasicInt;
using qmp::ExactFloat;
using qmp::LeafOutputs;
using qmp::MultiplyContext;
using qmp::Word;

// The general path.
struct ChudnovskyKernels {
    using Numbers = ChudnovskyNumbers;
    static constexpr std::uint32_t formula = 0;
    static constexpr std::uint64_t words = 5;
    static constexpr std::uint64_t longest_range = 7;
    void term(BasicInt& P, BasicInt& Q, BasicInt& R, std::uint64_t k) const {
        Pi_Chudnovsky_BSR_End_PR1(P, R, k);
        Pi_Chudnovsky_BSR_End_Q1(Q, k);
    }
};
struct RamanujanKernels {
    using Numbers = RamanujanNumbers;
    static constexpr std::uint32_t formula = 1;
    static constexpr std::uint64_t words = 5;
    static constexpr std::uint64_t longest_range = 11;
    void term(BasicInt& P, BasicInt& Q, BasicInt& R, std::uint64_t k) const {
        Pi_Ramanujan_BSR_End_R1(R, k);
        Pi_Ramanujan_BSR_End_P1(P, R, k);
        Pi_Ramanujan_BSR_End_Q1(Q, k);
    }
};

// What a leaf gives: words and check values of P, Q, R, or its capacity error.
struct Outcome {
    std::vector<Word> words[3];
    std::uint64_t checks[3] = {};
    std::string error;
    std::uint64_t present = 0;
    std::uint64_t needed = 0;
    bool operator==(const Outcome&) const = default;
};

using Capacities = std::array<std::uint64_t, 3>;
constexpr Capacities ample = {64, 64, 64};

template <typename Compute>
Outcome outcome_of(Capacities capacity, Compute&& compute) {
    Slot P(capacity[0]), Q(capacity[1]), R(capacity[2]);
    Outcome result;
    try {
        compute(P.value, Q.value, R.value);
        const BasicInt* values[] = {&P.value, &Q.value, &R.value};
        for (int i = 0; i < 3; i++) {
            expect_sound(*values[i]);
            result.words[i] = words_of(*values[i]);
            result.checks[i] = values[i]->hash;
        }
    } catch (const qmp::BufferTooSmallException& e) {
        result.error = e.function();
        result.present = e.buffer_size();
        result.needed = e.required_size();
    }
    return result;
}

template <typename Kernels>
Outcome bisected(std::uint64_t a, std::uint64_t b, Capacities capacity = ample) {
    return outcome_of(capacity, [&](BasicInt& P, BasicInt& Q, BasicInt& R) {
        LeafOutputs out = {P, Q, R};
        qmp::leaf_bisect(Kernels(), Kernels::Numbers::alternating, out, a, b);
        P = out.P, Q = out.Q, R = out.R;
    });
}

void take(BasicInt& x, const ExactFloat& value) {
    EXPECT_EQ(value.exp, 0);
    EXPECT_EQ(value.T, value.base);
    x.L = value.L;
    x.hash = value.hash;
}

template <typename Kernels>
Outcome leaf_of(std::uint64_t a, std::uint64_t b, Capacities capacity = ample) {
    return outcome_of(capacity, [&](BasicInt& P, BasicInt& Q, BasicInt& R) {
        ExactFloat out[] = {{P.T, P.AL}, {Q.T, Q.AL}, {R.T, R.AL}};
        const MultiplyContext none(qmp::ParallelContext::sequential(), nullptr, nullptr, 0);
        pi_formula(Kernels::formula).series.BSR_End(out[0], out[1], out[2], none, a, b);
        take(P, out[0]), take(Q, out[1]), take(R, out[2]);
    });
}

// One of the codes by itself: nothing where it does not apply.
template <typename Kernels, int Bits>
std::optional<Outcome> straight(std::uint64_t a, std::uint64_t b, Capacities capacity = ample) {
    bool applies = false;
    const Outcome result = outcome_of(capacity, [&](BasicInt& P, BasicInt& Q, BasicInt& R) {
        ExactFloat out[] = {{P.T, P.AL}, {Q.T, Q.AL}, {R.T, R.AL}};
        applies =
            qmp::leaf::sum_leaf<Bits>(PiTerms<typename Kernels::Numbers>(), out[0], out[1], out[2], a, b);
        if (applies) {
            take(P, out[0]), take(Q, out[1]), take(R, out[2]);
        } else {
            for (const BasicInt* x : {&P, &Q, &R}) {
                for (std::uint64_t i = 0; i < x->AL; i++) EXPECT_EQ(x->T[i], kelvara_test::garbage);
            }
            throw qmp::BufferTooSmallException("", 0, 0);
        }
    });
    return applies ? std::optional(result) : std::nullopt;
}

template <typename Kernels>
class PiLeaves : public ::testing::Test {};
using AllKernels = ::testing::Types<ChudnovskyKernels, RamanujanKernels>;
TYPED_TEST_SUITE(PiLeaves, AllKernels);

TYPED_TEST(PiLeaves, EqualTheBisectionFromTheFirstTermOn) {
    for (std::uint64_t n = 1; n <= TypeParam::longest_range; n++) {
        for (std::uint64_t a = 0; a < 40; a++) {
            EXPECT_EQ(leaf_of<TypeParam>(a, a + n), bisected<TypeParam>(a, a + n)) << a << ' ' << n;
        }
    }
}

// The largest values of every code, the first ones of the next, and the general path beyond.
TYPED_TEST(PiLeaves, EqualTheBisectionAroundEveryPowerOfTwo) {
    for (std::uint64_t n = 1; n <= TypeParam::longest_range; n++) {
        for (int bits = 5; bits <= 46; bits++) {
            const std::uint64_t end = std::uint64_t{1} << bits;
            for (const std::uint64_t b : {end - 1, end, end + 1, end + n - 1, end + n, end + n + 1}) {
                EXPECT_EQ(leaf_of<TypeParam>(b - n, b), bisected<TypeParam>(b - n, b)) << b << ' ' << n;
            }
        }
    }
}

TYPED_TEST(PiLeaves, EqualTheBisectionAtRandom) {
    kelvara_test::Random random;
    for (std::uint64_t round = 0; round < 500 * kelvara_test::multiplier(); round++) {
        const std::uint64_t n = random.between(1, TypeParam::longest_range);
        const std::uint64_t a = random.next() >> random.between(64 - 45, 63);
        EXPECT_EQ(leaf_of<TypeParam>(a, a + n), bisected<TypeParam>(a, a + n)) << a << ' ' << n;
    }
}

template <typename Kernels, int Bits>
void expect_ends() {
    const std::uint64_t end = std::uint64_t{1} << Bits;
    for (std::uint64_t n = 2; n <= Kernels::longest_range; n++) {
        const auto last = straight<Kernels, Bits>(end - 1 - n, end - 1);
        ASSERT_TRUE(last.has_value()) << Bits << ' ' << n;
        EXPECT_EQ(*last, (bisected<Kernels>(end - 1 - n, end - 1))) << Bits << ' ' << n;
        EXPECT_FALSE((straight<Kernels, Bits>(end - n, end)).has_value());
    }
    EXPECT_FALSE((straight<Kernels, Bits>(4, 5)).has_value());
    EXPECT_FALSE((straight<Kernels, Bits>(4, 5 + Kernels::longest_range)).has_value());
}

// A code takes its largest values, and refuses the next index, a single term, and a range that is no leaf.
TYPED_TEST(PiLeaves, EveryCodeEndsAtItsPowerOfTwo) {
    expect_ends<TypeParam, 23>();
    expect_ends<TypeParam, 27>();
    expect_ends<TypeParam, 31>();
    expect_ends<TypeParam, 39>();
}

TYPED_TEST(PiLeaves, BuffersOfExactlyTheirWidthsDo) {
    constexpr int bits = 31;
    using W = qmp::leaf::Widths<PiTerms<typename TypeParam::Numbers>, bits, 6>;
    const std::uint64_t b = (std::uint64_t{1} << bits) - 1;
    const Capacities exact = {W::P, W::Q, W::R};
    const auto expected = bisected<TypeParam>(b - 6, b);
    const auto sum = straight<TypeParam, bits>(b - 6, b, exact);
    ASSERT_TRUE(sum.has_value());
    EXPECT_EQ(*sum, expected);
    for (int i = 0; i < 3; i++) {
        Capacities one_short = exact;
        one_short[static_cast<std::size_t>(i)]--;
        EXPECT_FALSE((straight<TypeParam, bits>(b - 6, b, one_short)).has_value());
    }
}

// Whatever the buffers: the sums, or the error of the general path.
TYPED_TEST(PiLeaves, ShortBuffersGiveTheErrorsOfTheBisection) {
    std::uint64_t errors = 0;
    for (std::uint64_t n = 1; n <= TypeParam::longest_range; n++) {
        for (const std::uint64_t a : {std::uint64_t{7}, std::uint64_t{1000000}, std::uint64_t{1} << 36}) {
            const Outcome sum = bisected<TypeParam>(a, a + n);
            for (std::size_t i = 0; i < 3; i++) {
                for (std::uint64_t capacity = 1; capacity < 36; capacity++) {
                    Capacities capacities = ample;
                    capacities[i] = capacity;
                    const Outcome expected = bisected<TypeParam>(a, a + n, capacities);
                    const Outcome result = leaf_of<TypeParam>(a, a + n, capacities);
                    // The bisection asks for a word that P's carry might have taken.
                    if (result == sum) continue;
                    EXPECT_EQ(result, expected) << a << ' ' << n << ' ' << i << ' ' << capacity;
                    EXPECT_NE(result.error, "");
                    errors++;
                }
            }
        }
    }
    EXPECT_GT(errors, 300u);
}

// The bounds that the widths follow from.
TYPED_TEST(PiLeaves, BoundsOfTheTermsHold) {
    using Numbers = typename TypeParam::Numbers;
    using Terms = PiTerms<Numbers>;
    const auto log2_of = [](const std::vector<Word>& words) {
        long double value = 0;
        for (std::size_t i = words.size(); i-- > 0;)
            value = value * 0x1p64L + static_cast<long double>(words[i]);
        return std::log2(value);
    };
    EXPECT_GE(Numbers::r_bits, std::log2(2.0L * Numbers::x * Numbers::x));
    EXPECT_GE(Numbers::linear_bits, std::log2(static_cast<long double>(Numbers::A + Numbers::B)));
    EXPECT_GE(Numbers::q_bits, std::log2(static_cast<long double>(Numbers::C)));
    // The summands of P fall by this factor at least.
    EXPECT_LT(2.0L * Numbers::x * Numbers::x / Numbers::C, 0x1p-26L);
    for (int bits = 1; bits <= 39; bits++) {
        const std::uint64_t k = (std::uint64_t{1} << bits) - 1;
        for (std::uint64_t n = 1; n <= std::min(TypeParam::longest_range, k); n++) {
            const Outcome sum = bisected<TypeParam>(k - n, k);
            const double q = Terms::q_bits(bits);
            const auto count = static_cast<double>(n);
            EXPECT_LE(log2_of(sum.words[0]), Terms::p_bits(bits) + (count - 1) * q + Terms::sum_bits);
            EXPECT_LE(log2_of(sum.words[1]), count * q);
            EXPECT_LE(log2_of(sum.words[2]), count * Terms::r_bits(bits));
        }
    }
}

#ifdef KELVARA_HAVE_GMP

struct Integer {
    mpz_t z;
    Integer() { mpz_init(z); }
    ~Integer() { mpz_clear(z); }
    Integer(const Integer&) = delete;
    Integer& operator=(const Integer&) = delete;
    std::vector<Word> words() const {
        std::vector<Word> result(mpz_size(z));
        mpz_export(result.data(), nullptr, -1, sizeof(Word), 0, 0, z);
        return result;
    }
};

// By the recurrence, from the formulas of the terms.
template <typename Numbers>
void expect_sum_by_gmp(std::uint64_t a, std::uint64_t n, const Outcome& result) {
    Integer P, Q, R, p, r;
    mpz_set_ui(Q.z, 1);
    mpz_set_ui(R.z, 1);
    for (std::uint64_t k = a + 1; k <= a + n; k++) {
        mpz_set_ui(r.z, Numbers::x * k - (Numbers::x - 1));
        mpz_mul_ui(r.z, r.z, 2 * k - 1);
        mpz_mul_ui(r.z, r.z, Numbers::x * k - 1);
        mpz_mul(R.z, R.z, r.z);
        mpz_set_ui(p.z, Numbers::A);
        mpz_mul_ui(p.z, p.z, k);
        mpz_add_ui(p.z, p.z, Numbers::B);
        mpz_mul(p.z, p.z, R.z);
        mpz_set_ui(r.z, Numbers::C);
        for (int i = 0; i < 3; i++) mpz_mul_ui(r.z, r.z, k);
        mpz_mul(P.z, P.z, r.z);
        mpz_mul(Q.z, Q.z, r.z);
        if (Numbers::alternating && (k - a) % 2 == 0) {
            mpz_sub(P.z, P.z, p.z);
        } else {
            mpz_add(P.z, P.z, p.z);
        }
    }
    EXPECT_EQ(result.words[0], P.words());
    EXPECT_EQ(result.words[1], Q.words());
    EXPECT_EQ(result.words[2], R.words());
}

TYPED_TEST(PiLeaves, EqualTheFormulas) {
    kelvara_test::Random random;
    for (std::uint64_t n = 1; n <= TypeParam::longest_range; n++) {
        for (const int bits : {0, 3, 16, 22, 23, 24, 27, 28, 31, 32, 36, 38, 39, 45}) {
            const std::uint64_t a = random.next() & ((std::uint64_t{1} << bits) - 1);
            expect_sum_by_gmp<typename TypeParam::Numbers>(a, n, leaf_of<TypeParam>(a, a + n));
        }
    }
}

#endif

}  // namespace
}  // namespace kelvara
