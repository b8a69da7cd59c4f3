#include <gtest/gtest.h>

#include "numbers/expect_errors.h"
#include "numbers/newton_expectations.h"
#include "numbers/newton_fixture.h"
#include "numbers/newton_step.h"
#include "platform/parallel/registry.h"

namespace {

using namespace kelvara_test;
using qmp::Word;

void root_E(NewtonMemory& memory, GuardedBigFloat& r, Word w, std::uint64_t p) {
    WatchedWords scratch(qmp::newton::elementary_scratch_words(p));
    BigFloatR_invsqrt_uW_E(memory.context(), r.number, w, p, scratch.data(), scratch.size());
}

void root_P(NewtonMemory& memory, GuardedBigFloat& r, Word w, std::uint64_t p) {
    WatchedWords scratch(qmp::inverse_square_root_scratch_words(p));
    BigFloatR_invsqrt_uW_P(memory.context(), r.number, w, p, scratch.data(), scratch.size(), nullptr);
}

std::vector<Word> hard_words(Random& random) {
    const Word root = 0xffffffff;
    std::vector<Word> words{2,
                            3,
                            5,
                            7,
                            10,
                            99,
                            root,
                            root + 1,
                            root + 2,
                            root * root - 1,
                            root * root + 1,
                            all_ones,
                            all_ones - 1,
                            Word{1} << 63};
    for (int i = 0; i < 4; ++i) words.push_back(random.next() >> random.between(0, 60) | 1);
    return words;
}

TEST(InverseSquareRoot, EveryPrecisionTo300) {
    Random random(1);
    for (std::uint64_t p = 1; p <= 300; ++p) {
        NewtonMemory memory(p);
        for (Word w : hard_words(random)) {
            GuardedBigFloat r(p + 4);
            root_P(memory, r, w, p);
            expect_inverse_root(r.number, w, p);
            if (p > 24) continue;
            NewtonMemory short_memory(40);
            root_E(short_memory, r, w, p);
            expect_inverse_root(r.number, w, p);
        }
    }
}

TEST(InverseSquareRoot, LongPrecisions) {
    for (std::uint64_t p : {512, 1000, 2048, 4001}) {
        NewtonMemory memory(p);
        for (Word w : {Word{2}, Word{10005}, all_ones, all_ones - 1}) {
            GuardedBigFloat r(p + 4);
            root_P(memory, r, w, p);
            expect_inverse_root(r.number, w, p);
        }
    }
}

TEST(InverseSquareRoot, OfPowersOfFourIsExact) {
    for (std::uint64_t p : {0, 1, 2, 3, 7, 9, 10, 25, 200}) {
        NewtonMemory memory(p);
        GuardedBigFloat r(p + 4);
        root_P(memory, r, 1, p);
        expect_number(r.number, {1}, 0);
        root_P(memory, r, 4, p);
        expect_number(r.number, {Word{1} << 63}, -1);
        root_P(memory, r, Word{1} << 62, p);
        expect_number(r.number, {Word{1} << 33}, -1);
    }
}

TEST(InverseSquareRoot, OfZero) {
    for (std::uint64_t p : {0, 1, 9, 10, 40}) {
        NewtonMemory memory(p);
        GuardedBigFloat r(p + 4);
        expect_exception<qmp::ArithmeticException>([&] { root_P(memory, r, 0, p); },
                                                   "BigFloatR_invsqrt_uW_E()", "Divide by zero.");
    }
}

TEST(InverseSquareRoot, OneWordLessThrows) {
    for (std::uint64_t p : {1, 2, 9, 10, 40}) {
        NewtonMemory memory(p);
        const char* function = p < 10 ? "BigFloatR_invsqrt_uW_E()" : "BigFloatR_invsqrt_uW_P()";
        const std::uint64_t needed = qmp::inverse_square_root_scratch_words(p);
        WatchedWords scratch(needed);
        const auto compute = [&](std::uint64_t capacity, std::uint64_t scratch_words) {
            GuardedBigFloat r(capacity);
            BigFloatR_invsqrt_uW_P(memory.context(), r.number, 3, p, scratch.data(), scratch_words, nullptr);
        };
        expect_buffer_too_small([&] { compute(p + 4, needed - 1); }, function, needed - 1, needed);
        expect_buffer_too_small([&] { compute(p + 3, needed); }, function, p + 3, p + 4);
        compute(p + 4, needed);
    }
}

TEST(InverseSquareRoot, TheSameForEveryTaskCount) {
    const auto framework = qmp::make_default_parallelizer();
    for (std::uint64_t p : {9, 44, 290, 4000}) {
        Words first;
        for (std::uint64_t tasks : {1, 2, 5}) {
            NewtonMemory memory(p, {tasks, framework.get()});
            GuardedBigFloat r(p + 4);
            root_P(memory, r, 10005, p);
            if (tasks == 1) first = words_of(r.number);
            EXPECT_TRUE(words_of(r.number) == first) << p << " words, " << tasks << " tasks";
        }
    }
}

}  // namespace
