// Truncating products: lengths, cuts, signs, the choice of basecase and dispatch.
#include <gtest/gtest.h>

#include "numbers/big_float.h"
#include "numbers/expect_errors.h"
#include "numbers/number_buffers.h"
#include "numbers/reference_integer.h"

namespace {

using namespace kelvara_test;
using qmp::BigFloat;
using qmp::BigFloatView;
using qmp::Word;

constexpr BigFloatView zero{nullptr, 0, 0, 1};

using Multiply = void (BigFloat::*)(const qmp::MultiplyContext&, BigFloatView, BigFloatView, std::uint64_t);
constexpr Multiply entries[] = {&BigFloat::set_mul, &BigFloat::set_mul_halved};

// The top m words of the product of the cut operands; the result may lack a few units of its last word.
void expect_product(BigFloatView result, BigFloatView a, BigFloatView b, std::uint64_t p) {
    a = a.cut(p + 2);
    b = b.cut(p + 2);
    const std::uint64_t n = a.L + b.L;
    const std::uint64_t m = std::min(n, p + 2);
    EXPECT_EQ(result.exp, static_cast<std::int64_t>(n - m) + a.exp + b.exp);
    EXPECT_EQ(result.sign, a.sign == b.sign ? 1 : 0);
    const Words exact = without_low(product(Words(a.T, a.T + a.L), Words(b.T, b.T + b.L)), n - m);
    const Words words = words_of(result);
    ASSERT_FALSE(words.empty());
    EXPECT_NE(words.back(), 0u);
    if (n == m) {
        EXPECT_EQ(words, exact);
    } else {
        EXPECT_GE(compare(exact, words), 0);
        EXPECT_LE(compare(difference(exact, words), {3}), 0);
    }
}

TEST(BigFloatProducts, EveryShapeOfShortOperands) {
    SmallProducts products;
    Random random(1);
    for (Multiply multiply : entries) {
        for (std::uint64_t la = 1; la <= 28; ++la) {
            for (std::uint64_t lb = 1; lb <= 28; ++lb) {
                for (std::uint64_t p : {0, 1, 2, 5, 9, 10, 17, 18, 30, 60}) {
                    const Words a = make_words(random, la, all_patterns[(la + p) % 5]);
                    const Words b = make_words(random, lb, all_patterns[(lb + la) % 5]);
                    const BigFloatView va = view_of(a, -5, random.next() & 1);
                    const BigFloatView vb = view_of(b, 12, random.next() & 1);
                    const std::uint64_t m = std::min(std::min(la, p + 2) + std::min(lb, p + 2), p + 2);
                    GuardedBigFloat x(m);
                    (x.number.*multiply)(products.context(), va, vb, p);
                    expect_product(x.number, va, vb, p);
                    GuardedBigFloat small(m - 1);
                    expect_buffer_too_small([&] { (small.number.*multiply)(products.context(), va, vb, p); },
                                            "BigFloat::set_mul()", m - 1, m);
                }
            }
        }
    }
}

TEST(BigFloatProducts, Squares) {
    SmallProducts products;
    Random random(2);
    for (std::uint64_t n = 1; n <= 28; ++n) {
        for (std::uint64_t p : {0, 1, 2, 5, 9, 10, 17, 18, 30, 60}) {
            for (Pattern pattern : all_patterns) {
                const Words a = make_words(random, n, pattern);
                const BigFloatView va = view_of(a, -5, 0);
                const std::uint64_t m = std::min(2 * std::min(n, p + 2), p + 2);
                GuardedBigFloat x(m);
                x.number.set_sqr(products.context(), va, p);
                expect_product(x.number, va, va, p);
                GuardedBigFloat small(m - 1);
                expect_buffer_too_small([&] { small.number.set_sqr(products.context(), va, p); },
                                        "BigFloat::set_sqr()", m - 1, m);
            }
        }
    }
}

TEST(BigFloatProducts, ZeroOperands) {
    SmallProducts products;
    GuardedBigFloat x(3);
    for (Multiply multiply : entries) {
        x.number.sign = 0;
        (x.number.*multiply)(products.context(), zero, view_of({1}, 0, 0), 5);
        expect_zero(x.number);
        (x.number.*multiply)(products.context(), view_of({1}), zero, 5);
        expect_zero(x.number);
    }
    x.number.set_sqr(products.context(), zero, 5);
    expect_zero(x.number);
}

// Shorter operands take the basecase, which needs no scratch; from 10 words on (20 for squares) the
// dispatch takes over, which does.
TEST(BigFloatProducts, WholeProductsOfShortOperandsNeedNoScratch) {
    const qmp::MultiplyContext none(qmp::ParallelContext::sequential(), nullptr, nullptr, 0);
    Random random(3);
    const Words nine = make_words(random, 9);
    const Words ten = make_words(random, 10);
    const Words many = make_words(random, 500);
    GuardedBigFloat x(509);
    x.number.set_mul(none, view_of(nine), view_of(many), 1000);
    expect_product(x.number, view_of(nine), view_of(many), 1000);
    x.number.set_mul(none, view_of(many), view_of(nine), 1000);
    x.number.set_sqr(none, view_of(nine), 1000);
    expect_product(x.number, view_of(nine), view_of(nine), 1000);
    EXPECT_THROW(x.number.set_mul(none, view_of(ten), view_of(ten), 1000), qmp::BufferTooSmallException);
    EXPECT_THROW(x.number.set_sqr(none, view_of(ten), 1000), qmp::BufferTooSmallException);
    EXPECT_THROW(x.number.set_mul(none, view_of(nine), view_of(ten), 10), qmp::BufferTooSmallException)
        << "a truncated product";
}

TEST(BigFloatProducts, ATopWordThatVanishesIsDropped) {
    SmallProducts products;
    GuardedBigFloat x(4);
    x.number.set_mul(products.context(), view_of({0, 1}, 2), view_of({0, 1}, 3), 10);
    expect_number(x.number, {0, 0, 1}, 5);
}

}  // namespace
