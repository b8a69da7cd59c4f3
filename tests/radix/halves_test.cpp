#include "radix/halves.h"

#include <gtest/gtest.h>

#include <vector>

#include "radix/digit_codecs.h"

namespace qmp {
namespace {

constexpr Word base = decimal_word_base;
constexpr Word nines = base - 1;

// Digits most significant first: `high` and `low`.
struct Joined {
    bool fits;
    std::vector<Word> digits;
    Word guard;
};

Joined join(std::vector<Word> high, const std::vector<Word>& low, Word high_guard, Word low_guard = 77) {
    std::vector<Word> words(high);
    words.insert(words.end(), low.begin(), low.end());
    std::vector<Word> memory(words.rbegin(), words.rend());
    const bool fits =
        join_halves(base, memory.data() + memory.size(), high.size(), low.size(), high_guard, low_guard);
    return {fits, std::vector<Word>(memory.rbegin(), memory.rend()), low_guard};
}

TEST(JoinHalves, EqualWordsFit) {
    for (const Word t : {Word{0}, Word{5}, nines}) {
        const Joined j = join({1, 2}, {t, 3}, t);
        EXPECT_TRUE(j.fits);
        EXPECT_EQ(j.digits, (std::vector<Word>{1, 2, t, 3}));
        EXPECT_EQ(j.guard, 77u);
    }
}

TEST(JoinHalves, ADifferenceOfOneFits) {
    EXPECT_TRUE(join({1, 2}, {6, 3}, 5).fits);
    EXPECT_TRUE(join({1, 2}, {4, 3}, 5).fits);
    EXPECT_TRUE(join({1, 2}, {nines, 3}, nines - 1).fits);
    EXPECT_EQ(join({1, 2}, {6, 3}, 5).digits, (std::vector<Word>{1, 2, 6, 3}));
}

TEST(JoinHalves, AnythingElseDoesNot) {
    EXPECT_FALSE(join({1, 2}, {7, 3}, 5).fits);
    EXPECT_FALSE(join({1, 2}, {3, 3}, 5).fits);
    EXPECT_FALSE(join({1, 2}, {nines, 3}, 1).fits);
    EXPECT_FALSE(join({1, 2}, {1, 3}, nines).fits);
}

TEST(JoinHalves, ACarryThatTheHighHalfLost) {
    EXPECT_EQ(join({1, 2}, {0, 3}, nines).digits, (std::vector<Word>{1, 3, 0, 3}));
    const Joined far = join({1, nines, nines}, {0, 0, 4}, nines);
    EXPECT_TRUE(far.fits);
    EXPECT_EQ(far.digits, (std::vector<Word>{2, 0, 0, 0, 0, 4}));
    EXPECT_EQ(far.guard, 77u);
}

// A carry out of the top would be a fraction of 1 or more.
TEST(JoinHalves, NoCarryLeavesTheFraction) {
    EXPECT_FALSE(join({nines, nines}, {0, 0}, nines).fits);
}

TEST(JoinHalves, ABorrowThatTheLowHalfTook) {
    const Joined all = join({1, 2}, {nines, nines}, 0, nines);
    EXPECT_TRUE(all.fits);
    EXPECT_EQ(all.digits, (std::vector<Word>{1, 2, 0, 0}));
    EXPECT_EQ(all.guard, 0u);
    const Joined some = join({1, 2}, {nines, nines, 5}, 0);
    EXPECT_TRUE(some.fits);
    EXPECT_EQ(some.digits, (std::vector<Word>{1, 2, 0, 0, 5}));
    EXPECT_EQ(some.guard, 77u);
}

}  // namespace
}  // namespace qmp
