// Where the tests of kernels and leaves put their integers.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "numbers/basic_int.h"
#include "numbers/check_value.h"
#include "radix/hash.h"
#include "support/random_words.h"

namespace kelvara_test {

// A garbage-filled integer of a given capacity, with a guard word behind it.
struct Slot {
    explicit Slot(std::uint64_t capacity) : words(capacity + 1) {
        fill_garbage(words.data(), words.size());
        value = qmp::BasicInt(words.data(), capacity);
    }
    ~Slot() { EXPECT_EQ(words.back(), garbage); }
    Slot(const Slot&) = delete;
    Slot& operator=(const Slot&) = delete;

    std::vector<qmp::Word> words;
    qmp::BasicInt value;
};

inline void expect_word(const qmp::BasicInt& x, qmp::Word w) {
    ASSERT_EQ(x.L, 1u);
    EXPECT_EQ(x.T[0], w);
    EXPECT_EQ(x.hash, qmp::check_reduce(w));
}

inline void expect_sound(qmp::BasicIntView x) {
    ASSERT_GT(x.L, 0u);
    EXPECT_NE(x.T[x.L - 1], 0u);
    EXPECT_EQ(x.hash, qmp::hash_words(0, qmp::binary_word_radix, x.T, x.L));
}

inline std::vector<qmp::Word> words_of(qmp::BasicIntView x) {
    return {x.T, x.T + x.L};
}

}  // namespace kelvara_test
