#include <gtest/gtest.h>

#include "numbers/expect_errors.h"
#include "numbers/newton_expectations.h"
#include "numbers/newton_fixture.h"
#include "numbers/newton_step.h"
#include "platform/parallel/registry.h"
#include "support/fatal.h"

namespace {

using namespace kelvara_test;
using qmp::BigFloatView;
using qmp::MultiplyContext;
using qmp::Word;

const Words one{1};

enum class Form { elementary, transform };

void reciprocal(Form form, const MultiplyContext& context, GuardedBigFloat& r, BigFloatView x,
                std::uint64_t p) {
    if (form == Form::elementary) {
        WatchedWords scratch(qmp::newton::elementary_scratch_words(p));
        BigFloatR_rcp_E(context, r.number, x, p, scratch.data(), scratch.size());
    } else {
        WatchedWords scratch(qmp::reciprocal_scratch_words(p));
        BigFloatR_rcp_P(context, r.number, x, p, scratch.data(), scratch.size(), nullptr);
    }
}

void expect_reciprocal(Form form, NewtonMemory& memory, const Words& words, std::uint64_t p, Random& random) {
    const auto exp = static_cast<std::int64_t>(random.between(0, 40)) - 20;
    const BigFloatView x = view_of(words, exp, random.next() & 1);
    GuardedBigFloat r(p + 3);
    reciprocal(form, memory.context(), r, x, p);
    expect_quotient(r.number, view_of(one), x, p);
}

TEST(Reciprocal, ElementaryFormAtEveryShortPrecision) {
    Random random(1);
    for (std::uint64_t p = 1; p <= 24; ++p) {
        NewtonMemory memory(40);
        for (std::uint64_t length : lengths_around(p)) {
            for (const Words& x : hard_operands(random, length)) {
                expect_reciprocal(Form::elementary, memory, x, p, random);
            }
        }
    }
}

TEST(Reciprocal, EveryPrecisionTo300) {
    Random random(2);
    for (std::uint64_t p = 1; p <= 300; ++p) {
        NewtonMemory memory(p);
        const auto lengths = lengths_around(p);
        // All lengths at short precisions and around powers of two, where errors build up; one further on.
        const bool all = p <= 40 || (p & (p + 1)) == 0 || (p & (p - 1)) == 0;
        for (std::size_t i = 0; i < lengths.size(); ++i) {
            if (!all && i != p % lengths.size()) continue;
            for (const Words& x : hard_operands(random, lengths[i])) {
                expect_reciprocal(Form::transform, memory, x, p, random);
            }
        }
    }
}

TEST(Reciprocal, LongPrecisions) {
    Random random(3);
    for (std::uint64_t p : {511, 512, 513, 1000, 1024, 2048, 3999, 4096}) {
        NewtonMemory memory(p);
        for (std::uint64_t length : {std::uint64_t{1}, p, p + 2, 2 * p}) {
            const auto operands = hard_operands(random, length);
            for (std::size_t i = p % 3; i < operands.size(); i += 3) {
                expect_reciprocal(Form::transform, memory, operands[i], p, random);
            }
        }
    }
}

// x and 1/x both with long runs of zeros or ones, where truncation errors are as large as they can be.
TEST(Reciprocal, ReciprocalsOfTruncatedReciprocals) {
    Random random(4);
    for (std::uint64_t p : {8, 9, 16, 20, 32, 64, 128, 256}) {
        NewtonMemory memory(2 * p);
        for (const Words& y : hard_operands(random, p / 2 + 1)) {
            GuardedBigFloat x(2 * p + 3);
            reciprocal(Form::transform, memory.context(), x, view_of(y), 2 * p);
            expect_reciprocal(Form::transform, memory, words_of(x.number), p, random);
        }
    }
}

TEST(Reciprocal, PowersOfTheRadixAreExact) {
    for (std::uint64_t p : {0, 1, 2, 3, 5, 8, 9, 10, 11, 40, 100, 300}) {
        NewtonMemory memory(p);
        for (Form form : {Form::elementary, Form::transform}) {
            if (form == Form::elementary && p > 40) continue;
            for (std::int64_t exp : {0, 1, -7}) {
                GuardedBigFloat r(p + 3);
                reciprocal(form, memory.context(), r, view_of(one, exp, exp == 1 ? 0 : 1), p);
                expect_number(r.number, one, -exp, exp == 1 ? 0 : 1);
            }
        }
    }
}

TEST(Reciprocal, OfTheLargestWord) {
    NewtonMemory memory(1);
    GuardedBigFloat r(4);
    reciprocal(Form::elementary, memory.context(), r, view_of({all_ones}), 1);
    expect_quotient(r.number, view_of(one), view_of({all_ones}), 1);
}

TEST(Reciprocal, TheFormsMeetAtTenWords) {
    Random random(5);
    NewtonMemory memory(40);
    const Words x = make_words(random, 20);
    GuardedBigFloat elementary(12);
    GuardedBigFloat transform(12);
    reciprocal(Form::elementary, memory.context(), elementary, view_of(x), 9);
    reciprocal(Form::transform, memory.context(), transform, view_of(x), 9);
    EXPECT_EQ(words_of(elementary.number), words_of(transform.number));
    // Below 10 words the elementary form complains, from there on the transform form.
    GuardedBigFloat r(13);
    expect_buffer_too_small(
        [&] { BigFloatR_rcp_P(memory.context(), r.number, view_of(x), 9, nullptr, 0, nullptr); },
        "BigFloatR_rcp_E()", 0, qmp::reciprocal_scratch_words(9));
    expect_buffer_too_small(
        [&] { BigFloatR_rcp_P(memory.context(), r.number, view_of(x), 10, nullptr, 0, nullptr); },
        "BigFloatR_rcp_P()", 0, qmp::reciprocal_scratch_words(10));
}

TEST(Reciprocal, OneWordLessThrows) {
    for (std::uint64_t p : {1, 2, 3, 9, 10, 11, 40}) {
        NewtonMemory memory(p);
        const char* function = p < 10 ? "BigFloatR_rcp_E()" : "BigFloatR_rcp_P()";
        const std::uint64_t needed = qmp::reciprocal_scratch_words(p);
        WatchedWords scratch(needed);
        const auto compute = [&](std::uint64_t capacity, std::uint64_t scratch_words) {
            GuardedBigFloat r(capacity);
            BigFloatR_rcp_P(memory.context(), r.number, view_of({3}), p, scratch.data(), scratch_words,
                            nullptr);
        };
        expect_buffer_too_small([&] { compute(p + 3, needed - 1); }, function, needed - 1, needed);
        expect_buffer_too_small([&] { compute(p + 2, needed); }, function, p + 2, p + 3);
        compute(p + 3, needed);
    }
    EXPECT_EQ(qmp::newton::elementary_scratch_words(7), (4 + 2) + (4 + 3u));
}

TEST(Reciprocal, ProductScratchIsChecked) {
    NewtonMemory memory(20);
    MultiplyContext context = memory.context();
    context.scratch_words = 8;
    WatchedWords scratch(qmp::reciprocal_scratch_words(20));
    GuardedBigFloat r(23);
    EXPECT_THROW(
        BigFloatR_rcp_P(context, r.number, view_of({3}), 20, scratch.data(), scratch.size(), nullptr),
        qmp::BufferTooSmallException);
}

TEST(Reciprocal, OfZero) {
    for (std::uint64_t p : {0, 1, 9, 10, 50}) {
        NewtonMemory memory(p);
        GuardedBigFloat r(p + 3);
        expect_exception<qmp::ArithmeticException>(
            [&] {
                reciprocal(Form::transform, memory.context(), r, {nullptr, 0, 0, 1}, p);
            },
            "BigFloatR_rcp_E()", "Divide by zero.");
    }
}

#if GTEST_HAS_DEATH_TEST
TEST(ReciprocalDeathTest, AnOperandThatIsNotNormalised) {
    NewtonMemory memory(5);
    GuardedBigFloat r(8);
    EXPECT_FATAL(reciprocal(Form::elementary, memory.context(), r, view_of({1, 0}), 5),
                 "BigFloat::check_normalization\\(\\): Top word is zero\\.");
}
#endif

TEST(Reciprocal, TheSameForEveryTaskCount) {
    Random random(6);
    const auto framework = qmp::make_default_parallelizer();
    for (std::uint64_t p : {9, 37, 300, 4000}) {
        const Words x = make_words(random, p);
        Words first;
        for (std::uint64_t tasks : {1, 2, 3, 8}) {
            NewtonMemory memory(p, {tasks, framework.get()});
            GuardedBigFloat r(p + 3);
            reciprocal(Form::transform, memory.context(), r, view_of(x), p);
            if (tasks == 1) first = words_of(r.number);
            EXPECT_TRUE(words_of(r.number) == first) << p << " words, " << tasks << " tasks";
        }
    }
}

}  // namespace
