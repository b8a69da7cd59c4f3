// Single terms and leaves.
#include <gtest/gtest.h>

#include "constants/pi_formulas.h"
#include "errors/exception.h"
#include "series/leaf_e_taylor.h"
#include "series/leaf_slots.h"
#include "series/test_series.h"

namespace qmp {
namespace {

using kelvara_test::expect_sound;
using kelvara_test::expect_word;
using kelvara_test::Slot;

TEST(PiKernels, ChudnovskyAtOne) {
    Slot P(5), Q(4), R(3);
    kelvara::Pi_Chudnovsky_BSR_End_PR1(P.value, R.value, 1);
    kelvara::Pi_Chudnovsky_BSR_End_Q1(Q.value, 1);
    expect_word(R.value, 5);
    expect_word(P.value, 2793657715);
    expect_word(Q.value, 10939058860032000);
}

TEST(PiKernels, RamanujanAtOne) {
    Slot P(5), Q(4), R(3);
    kelvara::Pi_Ramanujan_BSR_End_R1(R.value, 1);
    kelvara::Pi_Ramanujan_BSR_End_P1(P.value, R.value, 1);
    kelvara::Pi_Ramanujan_BSR_End_Q1(Q.value, 1);
    expect_word(R.value, 3);
    expect_word(P.value, 82479);
    expect_word(Q.value, 3073907232);
}

TEST(PiKernels, FitTheirCapacitiesAtTheLargestIndices) {
    // Beyond any index that a size of the catalogue needs.
    for (const std::uint64_t k :
         {std::uint64_t{2}, std::uint64_t{1000003}, (std::uint64_t{1} << 46) + 12345}) {
        Slot P(5), Q(4), R(3);
        kelvara::Pi_Chudnovsky_BSR_End_PR1(P.value, R.value, k);
        kelvara::Pi_Chudnovsky_BSR_End_Q1(Q.value, k);
        for (const Slot* slot : {&P, &Q, &R}) expect_sound(slot->value);
        Slot P2(5), Q2(4), R2(3);
        kelvara::Pi_Ramanujan_BSR_End_R1(R2.value, k);
        kelvara::Pi_Ramanujan_BSR_End_P1(P2.value, R2.value, k);
        kelvara::Pi_Ramanujan_BSR_End_Q1(Q2.value, k);
        for (const Slot* slot : {&P2, &Q2, &R2}) expect_sound(slot->value);
    }
}

TEST(PiKernels, CapacityErrorsNameThem) {
    Slot P(5), Q(4), R(3), shortP(4), shortQ(3), shortR(2);
    R.value.T[0] = R.value.L = 1;
    struct Case {
        const char* name;
        std::uint64_t present;
        std::uint64_t needed;
        std::function<void()> call;
    };
    const Case cases[] = {
        {"Pi_Chudnovsky_BSR_End_PR1()", 4, 5,
         [&] { kelvara::Pi_Chudnovsky_BSR_End_PR1(shortP.value, R.value, 1); }},
        {"Pi_Chudnovsky_BSR_End_PR1()", 2, 3,
         [&] { kelvara::Pi_Chudnovsky_BSR_End_PR1(P.value, shortR.value, 1); }},
        {"Pi_Chudnovsky_BSR_End_Q1()", 3, 4, [&] { kelvara::Pi_Chudnovsky_BSR_End_Q1(shortQ.value, 1); }},
        {"Pi_Ramanujan_BSR_End_R1()", 2, 3, [&] { kelvara::Pi_Ramanujan_BSR_End_R1(shortR.value, 1); }},
        {"Pi_Ramanujan_BSR_End_P1()", 4, 5,
         [&] { kelvara::Pi_Ramanujan_BSR_End_P1(shortP.value, R.value, 1); }},
        {"Pi_Ramanujan_BSR_End_Q1()", 3, 4, [&] { kelvara::Pi_Ramanujan_BSR_End_Q1(shortQ.value, 1); }},
    };
    for (const Case& c : cases) {
        try {
            c.call();
            FAIL() << c.name;
        } catch (const BufferTooSmallException& e) {
            EXPECT_EQ(e.function(), c.name);
            EXPECT_EQ(e.buffer_size(), c.present);
            EXPECT_EQ(e.required_size(), c.needed);
        }
    }
}

TEST(ExponentialKernels, FirstTerms) {
    Slot P(2), Q(2);
    E_TaylorN_BSR_End_PQ1(P.value, Q.value, 1, 3);  // 1/2 + 1/6
    expect_word(P.value, 4);
    expect_word(Q.value, 6);
    E_TaylorA_BSR_End_PQ1(P.value, Q.value, 1, 3);  // 1/2 - 1/6
    expect_word(P.value, 2);
    expect_word(Q.value, 6);
    Slot P4(4), Q4(4);
    E_TaylorN_BSR_End_PQ1(P4.value, Q4.value, 1, 5);  // 1/2 + 1/6 + 1/24 + 1/120
    expect_word(P4.value, 86);
    expect_word(Q4.value, 120);
    E_TaylorA_BSR_End_PQ1(P4.value, Q4.value, 1, 5);  // 1/2 - 1/6 + 1/24 - 1/120
    expect_word(P4.value, 44);
    expect_word(Q4.value, 120);
}

TEST(ExponentialKernels, CarriesAndLengths) {
    for (std::uint64_t length = 2; length < 8; length++) {
        for (const std::uint64_t a :
             {std::uint64_t{1}, std::uint64_t{0xfffffff0}, (std::uint64_t{1} << 62) + 3, UINT64_MAX - 9}) {
            Slot P(length), Q(length);
            E_TaylorN_BSR_End_PQ1(P.value, Q.value, a, a + length);
            expect_sound(P.value);
            expect_sound(Q.value);
            E_TaylorA_BSR_End_PQ1(P.value, Q.value, a, a + length);
            expect_sound(P.value);
            expect_sound(Q.value);
        }
    }
}

TEST(ExponentialKernels, CapacityErrorsNameThem) {
    Slot P(4), Q(4), shortP(3), shortQ(3);
    const auto expect_error = [](const char* name, auto&& call) {
        try {
            call();
            FAIL();
        } catch (const BufferTooSmallException& e) {
            EXPECT_EQ(e.function(), name);
            EXPECT_EQ(e.buffer_size(), 3u);
            EXPECT_EQ(e.required_size(), 4u);
        }
    };
    expect_error("E_TaylorN_BSR_End_PQ1()", [&] { E_TaylorN_BSR_End_PQ1(shortP.value, Q.value, 1, 5); });
    expect_error("E_TaylorN_BSR_End_PQ1()", [&] { E_TaylorN_BSR_End_PQ1(P.value, shortQ.value, 1, 5); });
    expect_error("E_TaylorA_BSR_End_PQ1()", [&] { E_TaylorA_BSR_End_PQ1(shortP.value, Q.value, 1, 5); });
    expect_error("E_TaylorA_BSR_End_PQ1()", [&] { E_TaylorA_BSR_End_PQ1(P.value, shortQ.value, 1, 5); });
}

TEST(Leaf, AOneTermRangeIsTheTermOfItsEnd) {
    for (std::uint32_t formula : {0u, 1u}) {
        const BSS_P2B3_Type0& series = kelvara::pi_formula(formula).series;
        for (const std::uint64_t a : {0u, 6u, 1000u}) {
            Slot words[4] = {Slot(6), Slot(6), Slot(6), Slot(6)};
            BSS_P2B3_Type0::Buffers out;
            for (int i = 0; i < 4; i++) out[i] = ExactFloat(words[i].words.data(), 6);
            const MultiplyContext none(ParallelContext::sequential(), nullptr, nullptr, 0);
            BSR_serial(series, none, out, a, a + 1);
            Slot P(5), Q(4), R(3);
            if (formula == 0) {
                kelvara::Pi_Chudnovsky_BSR_End_PR1(P.value, R.value, a + 1);
                kelvara::Pi_Chudnovsky_BSR_End_Q1(Q.value, a + 1);
            } else {
                kelvara::Pi_Ramanujan_BSR_End_R1(R.value, a + 1);
                kelvara::Pi_Ramanujan_BSR_End_P1(P.value, R.value, a + 1);
                kelvara::Pi_Ramanujan_BSR_End_Q1(Q.value, a + 1);
            }
            const Slot* expected[] = {&P, &Q, &R};
            for (int i = 0; i < 3; i++) {
                EXPECT_EQ(out[i].exp, 0);
                EXPECT_EQ(out[i].hash, expected[i]->value.hash);
                EXPECT_EQ(
                    std::vector<Word>(out[i].T, out[i].T + out[i].L),
                    std::vector<Word>(expected[i]->value.T, expected[i]->value.T + expected[i]->value.L));
            }
        }
    }
}

}  // namespace
}  // namespace qmp
