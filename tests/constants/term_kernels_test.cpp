// The kernels of single terms: known values, GMP, and their capacities.
#include <gtest/gtest.h>

#include <functional>

#include "constants/arccoth_series.h"
#include "constants/catalan_huvent.h"
#include "constants/catalan_lupas.h"
#include "constants/lemniscate_series.h"
#include "constants/zeta3_series.h"
#include "errors/exception.h"
#include "radix/hash.h"
#include "series/leaf_slots.h"
#include "support/random_words.h"
#ifdef KELVARA_HAVE_GMP
#include "constants/series_terms.h"
#endif

namespace kelvara {
namespace {

using kelvara_test::expect_sound;
using kelvara_test::expect_word;
using kelvara_test::Slot;
using kelvara_test::words_of;
using qmp::ExactFloat;

TEST(TermKernels, ZetaLongAtOne) {
    Slot P(14), Q(9), R(8);
    Zeta3_AZ2_BSR_End_R1(R.value, 1);
    Zeta3_AZ2_BSR_End_P1(P.value, R.value, 1);
    Zeta3_AZ2_BSR_End_Q1(Q.value, 1);
    expect_word(R.value, 1);
    expect_word(P.value, 1523508);
    expect_word(Q.value, 20580000);
}

TEST(TermKernels, ZetaShortAtOne) {
    Slot P(8), Q(5), R(5);
    Zeta3_AZ1_BSR_End1(P.value, Q.value, R.value, 1);
    expect_word(R.value, 1);
    expect_word(P.value, 532);
    expect_word(Q.value, 7776);
}

TEST(TermKernels, LupasAtOne) {
    Slot P(7), Q(4), R(4);
    Catalan_Lupas_BSR_End1(P.value, Q.value, R.value, 1);
    expect_word(R.value, 32);
    expect_word(P.value, 3680);
    expect_word(Q.value, 1225);
}

TEST(TermKernels, ArcSinlemnOfOneHalfAtOne) {
    Slot P(3), Q(3), R(3);
    ArcSinlemn_BSR_End1(P.value, Q.value, R.value, 1, 16, 1);
    expect_word(R.value, 1);
    expect_word(P.value, 1);
    expect_word(Q.value, 160);
}

TEST(TermKernels, ArcCothOfOneTermAndOfTwo) {
    Slot P(5), Q(5), R(3);
    for (const auto kernel : {ArcCoth_BSR_End_small, ArcCoth_BSR_End_large}) {
        kernel(P.value, Q.value, R.value, 4, 0, 1);  // 1 / 12
        expect_word(P.value, 1);
        expect_word(Q.value, 12);
        expect_word(R.value, 3);
        kernel(P.value, Q.value, R.value, 4, 0, 2);  // 1 / 12 + 1 / 80
        expect_word(P.value, 23);
        expect_word(Q.value, 240);
        expect_word(R.value, 15);
    }
}

struct Capacity {
    const char* name;
    std::uint64_t needed;
    std::function<void(std::uint64_t)> call;  // with that many words for one of the outputs
};

// Exactly its capacity is enough; one word less is refused in the kernel's name.
TEST(TermKernels, CapacityErrorsNameThem) {
    const auto three = [](auto kernel, int which, std::uint64_t words, std::uint64_t a, std::uint64_t b,
                          std::uint64_t c) {
        Slot P(which == 0 ? words : a), Q(which == 1 ? words : b), R(which == 2 ? words : c);
        kernel(P.value, Q.value, R.value);
    };
    const auto zeta = [](auto& P, auto& Q, auto& R) { Zeta3_AZ1_BSR_End1(P, Q, R, 1); };
    const auto lupas = [](auto& P, auto& Q, auto& R) { Catalan_Lupas_BSR_End1(P, Q, R, 1); };
    const auto sine = [](auto& P, auto& Q, auto& R) { ArcSinlemn_BSR_End1(P, Q, R, 1, 16, 1); };
    const auto small = [](auto& P, auto& Q, auto& R) { ArcCoth_BSR_End_small(P, Q, R, 4, 5, 9); };
    const auto large = [](auto& P, auto& Q, auto& R) { ArcCoth_BSR_End_large(P, Q, R, 4, 5, 9); };
    const char* zeta_name = "Zeta3_AZ1_BSR_End1()";
    const char* lupas_name = "Catalan_Lupas_BSR_End1()";
    const char* sine_name = "ArcSinlemn_BSR_End1()";
    const char* small_name = "ArcCoth_BSR_End_small()";
    const char* large_name = "ArcCoth_BSR_End_large()";
    const Capacity cases[] = {
        {"Zeta3_AZ2_BSR_End_R1()", 8,
         [](auto n) {
             Slot R(n);
             Zeta3_AZ2_BSR_End_R1(R.value, 1);
         }},
        {"Zeta3_AZ2_BSR_End_P1()", 14,
         [](auto n) {
             Slot R(8);
             Zeta3_AZ2_BSR_End_R1(R.value, 1);
             Slot P(n);
             Zeta3_AZ2_BSR_End_P1(P.value, R.value, 1);
         }},
        {"Zeta3_AZ2_BSR_End_Q1()", 9,
         [](auto n) {
             Slot Q(n);
             Zeta3_AZ2_BSR_End_Q1(Q.value, 1);
         }},
        {zeta_name, 8, [&](auto n) { three(zeta, 0, n, 8, 5, 5); }},
        {zeta_name, 5, [&](auto n) { three(zeta, 1, n, 8, 5, 5); }},
        {zeta_name, 5, [&](auto n) { three(zeta, 2, n, 8, 5, 5); }},
        {lupas_name, 7, [&](auto n) { three(lupas, 0, n, 7, 4, 4); }},
        {lupas_name, 4, [&](auto n) { three(lupas, 1, n, 7, 4, 4); }},
        {lupas_name, 4, [&](auto n) { three(lupas, 2, n, 7, 4, 4); }},
        {"BasicInt::set_BasicInt()", 3, [&](auto n) { three(sine, 0, n, 3, 3, 3); }},
        {sine_name, 3, [&](auto n) { three(sine, 1, n, 3, 3, 3); }},
        {sine_name, 3, [&](auto n) { three(sine, 2, n, 3, 3, 3); }},
        {small_name, 9, [&](auto n) { three(small, 0, n, 9, 9, 5); }},
        {small_name, 9, [&](auto n) { three(small, 1, n, 9, 9, 5); }},
        {small_name, 5, [&](auto n) { three(small, 2, n, 9, 9, 5); }},
        {large_name, 9, [&](auto n) { three(large, 0, n, 9, 9, 5); }},
        {large_name, 9, [&](auto n) { three(large, 1, n, 9, 9, 5); }},
        {large_name, 5, [&](auto n) { three(large, 2, n, 9, 9, 5); }},
        {"Catalan_Huvent_BSR_End()", 18,
         [](auto n) {
             Slot P(n), Q(18);
             ExactFloat p(P.value.T, n), q(Q.value.T, 18);
             Catalan_Huvent_BSR_End(p, q, 1);
         }},
        {"Catalan_Huvent_BSR_End()", 18,
         [](auto n) {
             Slot P(18), Q(n);
             ExactFloat p(P.value.T, 18), q(Q.value.T, n);
             Catalan_Huvent_BSR_End(p, q, 1);
         }},
    };
    for (const Capacity& c : cases) {
        EXPECT_NO_THROW(c.call(c.needed)) << c.name;
        try {
            c.call(c.needed - 1);
            ADD_FAILURE() << c.name << ' ' << c.needed;
        } catch (const qmp::BufferTooSmallException& e) {
            EXPECT_EQ(e.function(), c.name);
            EXPECT_EQ(e.buffer_size(), c.needed - 1);
            EXPECT_EQ(e.required_size(), c.needed);
        }
    }
}

#ifdef KELVARA_HAVE_GMP

using kelvara_test::TermIntegers;

void expect_equal(const qmp::BasicInt& x, const kelvara_test::Integer& expected, std::uint64_t k) {
    expect_sound(x);
    EXPECT_EQ(words_of(x), expected.words()) << k;
}

// Small indices, the largest ones that a computation may need, powers of two and random ones between.
std::vector<std::uint64_t> indices() {
    std::vector<std::uint64_t> list = {1, 2, 3, 4, 5, 1000, (std::uint64_t{1} << 50) + 12345};
    for (int bits = 6; bits < 47; bits++) {
        for (const int offset : {-1, 0, 1}) {
            list.push_back((std::uint64_t{1} << bits) + static_cast<std::uint64_t>(offset));
        }
    }
    kelvara_test::Random random;
    for (std::uint64_t i = 0; i < 100 * kelvara_test::multiplier(); i++) {
        list.push_back(1 + (random.next() >> random.between(14, 63)));
    }
    return list;
}

TEST(TermKernels, EqualTheirFormulas) {
    for (const std::uint64_t k : indices()) {
        {
            Slot P(14), Q(9), R(8);
            Zeta3_AZ2_BSR_End_R1(R.value, k);
            Zeta3_AZ2_BSR_End_P1(P.value, R.value, k);
            Zeta3_AZ2_BSR_End_Q1(Q.value, k);
            const TermIntegers t = kelvara_test::zeta_long_term(k);
            expect_equal(P.value, t.P, k);
            expect_equal(Q.value, t.Q, k);
            expect_equal(R.value, t.R, k);
        }
        {
            Slot P(8), Q(5), R(5);
            Zeta3_AZ1_BSR_End1(P.value, Q.value, R.value, k);
            const TermIntegers t = kelvara_test::zeta_short_term(k);
            expect_equal(P.value, t.P, k);
            expect_equal(Q.value, t.Q, k);
            expect_equal(R.value, t.R, k);
        }
        {
            Slot P(7), Q(4), R(4);
            Catalan_Lupas_BSR_End1(P.value, Q.value, R.value, k);
            const TermIntegers t = kelvara_test::lupas_term(k);
            expect_equal(P.value, t.P, k);
            expect_equal(Q.value, t.Q, k);
            expect_equal(R.value, t.R, k);
        }
        for (const std::uint64_t q : {std::uint64_t{137}, std::uint64_t{65535}}) {
            Slot P(3), Q(3), R(3);
            const std::uint64_t q4 = q * q * (q * q);
            ArcSinlemn_BSR_End1(P.value, Q.value, R.value, 2401, q4, k);
            const TermIntegers t = kelvara_test::arc_sinlemn_term(7, q, k);
            expect_equal(P.value, t.P, k);
            expect_equal(Q.value, t.Q, k);
            expect_equal(R.value, t.R, k);
        }
    }
}

// P is compared after taking its power of two away again.
TEST(TermKernels, HuventEqualsItsFormula) {
    for (const std::uint64_t k : indices()) {
        if (k >> 48 != 0) continue;  // 18 words hold no more
        Slot P(18), Q(18);
        ExactFloat p(P.value.T, 18), q(Q.value.T, 18);
        Catalan_Huvent_BSR_End(p, q, k);
        const TermIntegers t = kelvara_test::huvent_term(k);
        EXPECT_EQ(std::vector<qmp::Word>(q.T, q.T + q.L), t.Q.words()) << k;
        EXPECT_EQ(q.exp, 0);
        expect_sound({q.T, q.L, q.hash});

        const std::int64_t low = -6 * static_cast<std::int64_t>(k) - 64 * p.exp;
        EXPECT_GE(low, 0);
        EXPECT_LT(low, 64);
        kelvara_test::Integer shifted = t.P;
        mpz_mul_2exp(shifted.z, shifted.z, static_cast<mp_bitcnt_t>(low));
        EXPECT_EQ(std::vector<qmp::Word>(p.T, p.T + p.L), shifted.words()) << k;
        p.mp2(6 * static_cast<std::int64_t>(k));
        EXPECT_EQ(p.hash, qmp::check_mul(qmp::hash_words(0, qmp::binary_word_radix, p.T, p.L),
                                         qmp::check_word_weight(p.exp)))
            << k;
    }
}

#endif

}  // namespace
}  // namespace kelvara
