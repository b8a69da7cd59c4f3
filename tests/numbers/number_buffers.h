// Buffers of number objects in tests: garbage inside, and guard words around, which no operation may touch.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "multiply/multiply_context.h"
#include "numbers/big_float.h"
#include "numbers/check_value.h"
#include "numbers/exact_float.h"
#include "support/random_words.h"

namespace kelvara_test {

using Words = std::vector<qmp::Word>;

constexpr qmp::Word all_ones = ~qmp::Word{0};

// Garbage words, 64-byte aligned. Fails its test when a word around them was written.
class WatchedWords {
  public:
    explicit WatchedWords(std::uint64_t words) : words_(words + 2 * guard + 8, guard_word), size_(words) {
        const auto address = reinterpret_cast<std::uintptr_t>(words_.data() + guard);
        data_ = words_.data() + guard + (64 - address % 64) % 64 / sizeof(qmp::Word);
        fill_garbage(data_, size_);
    }
    ~WatchedWords() {
        for (const qmp::Word* w = words_.data(); w < data_; ++w) EXPECT_EQ(*w, guard_word) << "below";
        for (const qmp::Word* w = data_ + size_; w < words_.data() + words_.size(); ++w) {
            EXPECT_EQ(*w, guard_word) << "above";
        }
    }
    WatchedWords(const WatchedWords&) = delete;
    WatchedWords& operator=(const WatchedWords&) = delete;

    qmp::Word* data() { return data_; }
    std::uint64_t size() const { return size_; }

  private:
    static constexpr std::uint64_t guard = 8;
    static constexpr qmp::Word guard_word = 0x0123456789abcdef;
    Words words_;
    qmp::Word* data_;
    std::uint64_t size_;
};

// A BigFloat with a buffer of exactly this capacity.
struct GuardedBigFloat {
    explicit GuardedBigFloat(std::uint64_t capacity) : buffer(capacity), number(buffer.data(), capacity) {}
    WatchedWords buffer;
    qmp::BigFloat number;
};

struct GuardedExactFloat {
    explicit GuardedExactFloat(std::uint64_t capacity) : buffer(capacity), number(buffer.data(), capacity) {}
    WatchedWords buffer;
    qmp::ExactFloat number;
};

inline qmp::BigFloatView view_of(const Words& words, std::int64_t exp = 0, std::uint8_t sign = 1) {
    return {words.data(), words.size(), exp, sign};
}

inline Words words_of(qmp::BigFloatView number) {
    return {number.T, number.T + number.L};
}

inline void expect_number(qmp::BigFloatView number, const Words& words, std::int64_t exp,
                          std::uint8_t sign = 1) {
    EXPECT_EQ(words_of(number), words);
    EXPECT_EQ(number.exp, exp);
    EXPECT_EQ(number.sign, sign);
}

inline void expect_zero(qmp::BigFloatView number) {
    expect_number(number, {}, 0, 1);
}

// The check value of words at a position, word by word.
inline std::uint64_t check_value_of(const qmp::Word* words, std::uint64_t n, std::int64_t exp) {
    std::uint64_t sum = 0;
    for (std::uint64_t i = 0; i < n; ++i) {
        const std::uint64_t weight = qmp::check_word_weight(exp + static_cast<std::int64_t>(i));
        sum = qmp::check_add(sum, qmp::check_mul(qmp::check_reduce(words[i]), weight));
    }
    return sum;
}

inline qmp::ExactFloatView exact_view(const Words& words, std::int64_t exp = 0) {
    return {words.data(), words.size(), exp, check_value_of(words.data(), words.size(), exp)};
}

// A context for products of up to 58 words, which need no twiddle tables.
struct SmallProducts {
    qmp::MultiplyContext context() {
        return {qmp::ParallelContext::sequential(), nullptr, scratch.data(), scratch.size()};
    }
    WatchedWords scratch{4096};
};

}  // namespace kelvara_test
