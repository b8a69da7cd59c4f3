// The leaves of the constants' P, Q, R series against sums by GMP, term by term.
#include <gtest/gtest.h>

#ifdef KELVARA_HAVE_GMP

#include <functional>
#include <memory>
#include <string>

#include "constants/arccoth_series.h"
#include "constants/catalan_lupas.h"
#include "constants/lemniscate_series.h"
#include "constants/series_terms.h"
#include "constants/zeta3_series.h"
#include "errors/exception.h"
#include "series/leaf_slots.h"
#include "support/random_words.h"

namespace kelvara {
namespace {

using kelvara_test::Integer;
using kelvara_test::Slot;
using kelvara_test::TermIntegers;
using qmp::ExactFloat;
using qmp::Word;

struct Leaves {
    std::string name;
    std::shared_ptr<const qmp::BSS_P2B3_Type0> series;
    std::function<TermIntegers(std::uint64_t)> term;
};

// A series that lives as long as the program.
std::shared_ptr<const qmp::BSS_P2B3_Type0> lasting(const qmp::BSS_P2B3_Type0& series) {
    return {&series, [](const qmp::BSS_P2B3_Type0*) {}};
}

std::vector<Leaves> all_leaves() {
    std::vector<Leaves> list = {
        {"az-long", lasting(zeta3_formula(0).series), kelvara_test::zeta_long_term},
        {"az-short", lasting(zeta3_formula(1).series), kelvara_test::zeta_short_term},
        {"lupas", lasting(catalan_lupas_formula().series), kelvara_test::lupas_term},
    };
    // Every width of a factor, its ends among them, and the first argument of the large kernel.
    for (const std::uint64_t x : {2u, 3u, 26u, 255u, 4801u, 8749u, 65535u, 65536u, 1000003u, 4294967295u}) {
        list.push_back({"ArcCoth(" + std::to_string(x) + ")", std::make_shared<ArcCothSeries>(x),
                        [x](std::uint64_t k) { return kelvara_test::arccoth_term(x, k); }});
    }
    // The arguments of the formulas, and one of no formula.
    for (const auto& [p, q] : {std::pair(1u, 2u), {2u, 3u}, {7u, 23u}, {7u, 137u}, {30001u, 65535u}}) {
        list.push_back({"ArcSinlemn(" + std::to_string(p) + "/" + std::to_string(q) + ")",
                        std::make_shared<ArcSinlemnSeries>(ArcSinlemnArgument{p, q}),
                        [p = p, q = q](std::uint64_t k) { return kelvara_test::arc_sinlemn_term(p, q, k); }});
    }
    return list;
}

// The sum over (a, b] by the recurrence.
TermIntegers sum_of(const Leaves& leaves, std::uint64_t a, std::uint64_t b) {
    TermIntegers sum = {Integer(0), Integer(1), Integer(1)};
    for (std::uint64_t k = a + 1; k <= b; k++) {
        TermIntegers term = leaves.term(k);
        sum.P *= term.Q;
        sum.Q *= term.Q;
        term.P *= sum.R;
        if (leaves.series->alternating && (k - a) % 2 == 0) {
            mpz_sub(sum.P.z, sum.P.z, term.P.z);
        } else {
            mpz_add(sum.P.z, sum.P.z, term.P.z);
        }
        sum.R *= term.R;
    }
    return sum;
}

void expect_equal(const ExactFloat& x, const Integer& expected) {
    kelvara_test::expect_sound({x.T, x.L, x.hash});
    EXPECT_EQ(x.exp, 0);
    EXPECT_EQ(std::vector<Word>(x.T, x.T + x.L), expected.words());
}

constexpr std::uint64_t ample = 200;  // words

void expect_leaf(const Leaves& leaves, std::uint64_t a, std::uint64_t b) {
    SCOPED_TRACE(leaves.name + " (" + std::to_string(a) + ", " + std::to_string(b) + "]");
    Slot P(ample), Q(ample), R(ample);
    ExactFloat out[] = {{P.value.T, ample}, {Q.value.T, ample}, {R.value.T, ample}};
    const qmp::MultiplyContext none(qmp::ParallelContext::sequential(), nullptr, nullptr, 0);
    leaves.series->BSR_End(out[0], out[1], out[2], none, a, b);
    const TermIntegers sum = sum_of(leaves, a, b);
    expect_equal(out[0], sum.P);
    expect_equal(out[1], sum.Q);
    expect_equal(out[2], sum.R);
}

TEST(SeriesLeaves, EqualTheSumsFromTheFirstTermOn) {
    for (const Leaves& leaves : all_leaves()) {
        for (std::uint64_t n = 1; n <= leaves.series->longest_leaf; n++) {
            for (std::uint64_t a = 0; a < 10; a++) expect_leaf(leaves, a, a + n);
        }
    }
}

// The largest values of every code, the first ones of the next, and the general path beyond.
TEST(SeriesLeaves, EqualTheSumsAroundEveryPowerOfTwo) {
    for (const Leaves& leaves : all_leaves()) {
        const std::uint64_t longest = leaves.series->longest_leaf;
        for (std::uint64_t n = 1; n <= longest;
             n += n < longest ? std::min<std::uint64_t>(2, longest - n) : 1) {
            for (int bits = 5; bits <= 40; bits++) {
                const std::uint64_t end = std::uint64_t{1} << bits;
                for (const std::uint64_t b : {end - 1, end, end + n}) expect_leaf(leaves, b - n, b);
            }
        }
    }
}

TEST(SeriesLeaves, EqualTheSumsAtRandom) {
    kelvara_test::Random random;
    for (const Leaves& leaves : all_leaves()) {
        for (std::uint64_t round = 0; round < 100 * kelvara_test::multiplier(); round++) {
            const std::uint64_t n = random.between(1, leaves.series->longest_leaf);
            const std::uint64_t a = random.next() >> random.between(64 - 44, 63);
            expect_leaf(leaves, a, a + n);
        }
    }
}

// The last index at which x^2 (2b + 1) fits one word, and the next.
TEST(SeriesLeaves, ArcCothWhereTheKernelsMeet) {
    for (const std::uint64_t x : {65536u, 65537u, 1000003u, 2000000011u}) {
        const Leaves leaves = {"ArcCoth(" + std::to_string(x) + ")", std::make_shared<ArcCothSeries>(x),
                               [x](std::uint64_t k) { return kelvara_test::arccoth_term(x, k); }};
        const std::uint64_t last = (UINT64_MAX / (x * x) - 1) / 2;
        for (std::uint64_t n = 1; n <= 15; n++) {
            if (last < n) continue;
            for (const std::uint64_t b : {last, last + 1, last + n}) expect_leaf(leaves, b - n, b);
        }
    }
}

// Whatever the buffers: the sums, or an error in a kernel's name, and nothing behind them is touched.
TEST(SeriesLeaves, ShortBuffersAreRefused) {
    const qmp::MultiplyContext none(qmp::ParallelContext::sequential(), nullptr, nullptr, 0);
    for (const Leaves& leaves : all_leaves()) {
        SCOPED_TRACE(leaves.name);
        const std::uint64_t n = leaves.series->longest_leaf;
        const std::uint64_t a = 1000000;
        const TermIntegers sum = sum_of(leaves, a, a + n);
        std::uint64_t errors = 0;
        for (std::size_t which = 0; which < 3; which++) {
            for (std::uint64_t capacity = 1; capacity < 40; capacity++) {
                std::uint64_t words[] = {ample, ample, ample};
                words[which] = capacity;
                Slot P(words[0]), Q(words[1]), R(words[2]);
                ExactFloat out[] = {{P.value.T, words[0]}, {Q.value.T, words[1]}, {R.value.T, words[2]}};
                try {
                    leaves.series->BSR_End(out[0], out[1], out[2], none, a, a + n);
                    expect_equal(out[0], sum.P);
                    expect_equal(out[1], sum.Q);
                    expect_equal(out[2], sum.R);
                } catch (const qmp::BufferTooSmallException& e) {
                    EXPECT_EQ(e.buffer_size(), capacity);
                    EXPECT_GT(e.required_size(), capacity);
                    EXPECT_NE(e.function(), "");
                    errors++;
                }
            }
        }
        EXPECT_GT(errors, 10u);
    }
}

// ArcCoth's leaves ask for all that its kernels may take.
TEST(SeriesLeaves, ArcCothNamesTheKernelThatServesTheRange) {
    const qmp::MultiplyContext none(qmp::ParallelContext::sequential(), nullptr, nullptr, 0);
    struct Row {
        std::uint64_t x;
        const char* kernel;
    };
    for (const Row& row : {Row{65536, "ArcCoth_BSR_End_small()"}, {4294967295, "ArcCoth_BSR_End_large()"}}) {
        const ArcCothSeries series(row.x);
        for (std::size_t which = 0; which < 3; which++) {
            std::uint64_t words[] = {11, 11, 6};
            const std::uint64_t needed = words[which];
            words[which]--;
            Slot P(words[0]), Q(words[1]), R(words[2]);
            ExactFloat out[] = {{P.value.T, words[0]}, {Q.value.T, words[1]}, {R.value.T, words[2]}};
            try {
                series.BSR_End(out[0], out[1], out[2], none, 7, 12);
                ADD_FAILURE() << row.x << ' ' << which;
            } catch (const qmp::BufferTooSmallException& e) {
                EXPECT_EQ(e.function(), row.kernel);
                EXPECT_EQ(e.buffer_size(), needed - 1);
                EXPECT_EQ(e.required_size(), needed);
            }
        }
    }
}

}  // namespace
}  // namespace kelvara

#endif
