// Estimates that are not good enough, and how each step refuses them.
#include <gtest/gtest.h>

#include "numbers/expect_errors.h"
#include "numbers/newton_fixture.h"
#include "numbers/newton_step.h"

namespace {

using namespace kelvara_test;
using qmp::AlgorithmFailedException;
using qmp::ArithmeticException;
using qmp::BigFloatView;
using qmp::ParallelContext;
using qmp::Word;

const char* const reciprocal_E = "BigFloatR_rcp_E()";
const char* const reciprocal_P = "BigFloatR_rcp_P()";
const char* const root_E = "BigFloatR_invsqrt_uW_E()";
const char* const root_P = "BigFloatR_invsqrt_uW_P()";

// What a statement prints.
template <typename Statement>
std::string printed(Statement statement) {
    testing::internal::CaptureStdout();
    statement();
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

// One elementary step of the reciprocal of x = 1 to 9 words (p' = 5) from the given estimate.
void step_E(const Words& estimate, std::int64_t exp) {
    NewtonMemory memory(9);
    GuardedBigFloat r(12);
    r.number.set_BigFloat(ParallelContext::sequential(), view_of(estimate, exp), 20);
    WatchedWords scratch(qmp::newton::elementary_scratch_words(9));
    qmp::newton::reciprocal_step_E(memory.context(), r.number, view_of({1}), 9, scratch.data(),
                                   scratch.size());
}

TEST(NewtonFailure, ElementaryReciprocal) {
    const char* failure = "Convergence Failure";
    expect_exception<AlgorithmFailedException>([] { step_E({2}, 0); }, reciprocal_E, failure);
    expect_exception<AlgorithmFailedException>([] { step_E({5, 1, 7}, -1); }, reciprocal_E, failure);
    expect_exception<AlgorithmFailedException>([] { step_E({7}, 3); }, reciprocal_E, failure);
    expect_exception<AlgorithmFailedException>([] { step_E({7}, -3); }, reciprocal_E, failure);
    // An error of R^-3 has its top at -2; at most -3 is allowed.
    expect_exception<AlgorithmFailedException>(
        [] {
            step_E({1, 0, 0, 1}, -3);
        },
        reciprocal_E, "Over-Estimate -> Convergence Failure");
    expect_exception<AlgorithmFailedException>(
        [] {
            step_E({all_ones, all_ones, all_ones}, -3);
        },
        reciprocal_E, "Under-Estimate -> Convergence Failure");
    expect_exception<AlgorithmFailedException>(
        [] {
            step_E({0, 0, 5}, -3);
        },
        reciprocal_E, "Under-Estimate -> Convergence Failure");
    expect_exception<ArithmeticException>([] { step_E({}, 0); }, reciprocal_E,
                                          "strip_l1s() resulted in zero.");
    // The worst estimates that are accepted.
    step_E({1, 0, 0, 0, 1}, -4);
    step_E({all_ones, all_ones, all_ones, all_ones}, -4);
}

TEST(NewtonFailure, WhatFailedIsPrinted) {
    EXPECT_NE(printed([] { EXPECT_ANY_THROW(step_E({2}, 0)); }).find("top: 2"), std::string::npos);
    const std::string over = printed([] { EXPECT_ANY_THROW(step_E({1, 0, 0, 1}, -3)); });
    EXPECT_NE(over.find("top: -2"), std::string::npos) << over;
    EXPECT_NE(over.find("-3"), std::string::npos) << over;
}

// One transform step of the reciprocal of x = 1 to 20 words (p' = 10): known from position -8 upward.
void step_P(const Words& estimate, std::int64_t exp) {
    NewtonMemory memory(20);
    GuardedBigFloat r(23);
    WatchedWords scratch(qmp::newton::correction_words(20));
    qmp::newton::reciprocal_step_P(memory.context(), r.number, view_of(estimate, exp), view_of({1}), 20,
                                   scratch.data(), nullptr);
}

// 1 + word * R^position, position < 0.
Words one_and(Word word, std::int64_t position) {
    Words words(static_cast<std::size_t>(1 - position), 0);
    words.front() = word;
    words.back() = 1;
    return words;
}

TEST(NewtonFailure, TransformReciprocal) {
    expect_exception<AlgorithmFailedException>([] { step_P(one_and(5, -9), -9); }, reciprocal_P,
                                               "Convergence Failure");
    step_P(one_and(5, -10), -10);
    const std::string text = printed([] { EXPECT_ANY_THROW(step_P(one_and(12345, -9), -9)); });
    EXPECT_NE(text.find("top: 12345"), std::string::npos) << text;
}

// What the window below the known words cannot show, given directly.
TEST(NewtonFailure, ErrorsThatReachTooHigh) {
    using qmp::newton::take_error_below;
    GuardedBigFloat y(8);
    const auto set = [&](const Words& words, std::int64_t exp) {
        y.number.set_BigFloat(ParallelContext::sequential(), view_of(words, exp), 10);
    };
    for (const char* function : {reciprocal_P, root_P}) {
        set({1}, -5);  // known from -3 upward: an error up to -4 when -8 is allowed
        expect_exception<AlgorithmFailedException>([&] { take_error_below(function, y.number, -3, 10); },
                                                   function, "Over-Estimate -> Convergence Failure");
        set({1, all_ones}, -5);
        expect_exception<AlgorithmFailedException>([&] { take_error_below(function, y.number, -3, 10); },
                                                   function, "Under-Estimate -> Convergence Failure");
        y.number.set_zero();
        expect_exception<ArithmeticException>(
            [&] { qmp::newton::complement_under_estimate(function, y.number, 10); }, function,
            "strip_l1s() resulted in zero.");
        EXPECT_EQ(take_error_below(function, y.number, -3, 10), qmp::newton::Estimate::over)
            << "an exact estimate";
    }
}

TEST(NewtonFailure, ElementaryInverseSquareRoot) {
    const auto step = [](const Words& estimate, std::int64_t exp) {
        NewtonMemory memory(9);
        GuardedBigFloat r(13);
        r.number.set_BigFloat(ParallelContext::sequential(), view_of(estimate, exp), 20);
        WatchedWords scratch(qmp::newton::elementary_scratch_words(9));
        qmp::newton::inverse_square_root_step_E(memory.context(), r.number, 1, 9, scratch.data(),
                                                scratch.size());
    };
    expect_exception<AlgorithmFailedException>([&] { step({2}, 0); }, root_E, "Convergence Failure");
    expect_exception<AlgorithmFailedException>(
        [&] {
            step({1, 0, 0, 1}, -3);
        },
        root_E, "Over-Estimate -> Convergence Failure");
    expect_exception<AlgorithmFailedException>(
        [&] {
            step({all_ones, all_ones, all_ones}, -3);
        },
        root_E, "Under-Estimate -> Convergence Failure");
    expect_exception<ArithmeticException>([&] { step({}, 0); }, root_E, "strip_l1s() resulted in zero.");
    step({1, 0, 0, 0, 0, 1}, -5);
}

TEST(NewtonFailure, TransformInverseSquareRoot) {
    const auto step = [](const Words& estimate, std::int64_t exp) {
        NewtonMemory memory(20);
        GuardedBigFloat r(24);
        WatchedWords scratch(qmp::newton::correction_words(20));
        qmp::newton::inverse_square_root_step_P(memory.context(), r.number, view_of(estimate, exp), 1, 20,
                                                scratch.data(), nullptr);
    };
    expect_exception<AlgorithmFailedException>([&] { step(one_and(5, -9), -9); }, root_P,
                                               "Convergence Failure");
    step(one_and(5, -10), -10);
}

TEST(NewtonFailure, Division) {
    // a/b with b = 1 and a wrong reciprocal, p = 20: known from position top(a) - 7 upward.
    Random random(1);
    const Words a = make_words(random, 22);
    const auto step = [&](const Words& r, std::int64_t exp) {
        NewtonMemory memory(20);
        GuardedBigFloat q(23);
        WatchedWords scratch(qmp::newton::division_step_words(20));
        qmp::newton::division_step(memory.context(), q.number, view_of(a), view_of({1}), view_of(r, exp), 20,
                                   scratch.data(), nullptr);
    };
    step(one_and(3, -10), -10);
    const char* function = "BigFloatR_div_P()";
    expect_exception<AlgorithmFailedException>([&] { step(one_and(3, -7), -7); }, function,
                                               "Convergence Failure");
    const std::string text = printed([&] { EXPECT_ANY_THROW(step(one_and(3, -7), -7)); });
    EXPECT_NE(text.find("topA: "), std::string::npos) << text;
    EXPECT_NE(text.find("topB: "), std::string::npos) << text;
}

// e = 1 - y where the words below the ones are zero, or there are none.
TEST(NewtonStep, ComplementsJustBelowPowersOfTheRadix) {
    GuardedBigFloat y(6);
    const auto complement = [&](const Words& words) {
        y.number.set_BigFloat(ParallelContext::sequential(),
                              view_of(words, -static_cast<std::int64_t>(words.size())), 10);
        qmp::newton::complement_under_estimate(reciprocal_E, y.number, 0);
    };
    complement({5, all_ones});
    expect_number(y.number, {all_ones - 4}, -2);
    complement({0, all_ones, all_ones});
    expect_number(y.number, {1}, -2);
    complement({all_ones, all_ones});
    expect_number(y.number, {1}, -2);
    complement({3, 0, all_ones});
    expect_number(y.number, {all_ones - 2, all_ones}, -3);
    complement({0, 3, 0, all_ones});
    expect_number(y.number, {0, all_ones - 2, all_ones}, -4);
}

}  // namespace
