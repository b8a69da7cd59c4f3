#include "platform/memory/guarded_allocation.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

std::uint64_t word_at(const void* p, std::int64_t offset) {
    std::uint64_t word;
    std::memcpy(&word, static_cast<const char*>(p) + offset, 8);
    return word;
}

template <typename Function>
std::string thrown_text(Function&& function) {
    try {
        function();
    } catch (const char* text) {
        return text;
    }
    return "nothing was thrown";
}

TEST(GuardedAllocation, HasTheStatedShape) {
    for (const std::uint64_t alignment : {0, 1, 4, 8, 32, 64, 4096}) {
        for (const std::uint64_t bytes : {0, 1, 8, 13, 1000}) {
            void* p = qmp::aligned_malloc(bytes, alignment);
            ASSERT_NE(p, nullptr);
            EXPECT_EQ(reinterpret_cast<std::uint64_t>(p) % (alignment < 8 ? 8 : alignment), 0u);
            EXPECT_EQ(word_at(p, -8), 0xea097be64bd0187du);
            EXPECT_EQ(word_at(p, -16), bytes);
            EXPECT_LT(word_at(p, -24), reinterpret_cast<std::uint64_t>(p) - 24);
            EXPECT_EQ(word_at(p, static_cast<std::int64_t>(bytes)), 0xc72bf73f0559cfe4u);
            std::memset(p, 0xff, bytes);
            qmp::aligned_free(p);
        }
    }
}

TEST(GuardedAllocation, AlignmentMustBeAPowerOfTwo) {
    for (const std::uint64_t alignment : {24, 12, 9, 100}) {
        EXPECT_EQ(thrown_text([&] { qmp::aligned_malloc(10, alignment); }),
                  "Alignment must be a power of two.");
    }
}

TEST(GuardedAllocation, NullIsIgnoredAndTooMuchIsNull) {
    qmp::aligned_free(nullptr);
    EXPECT_EQ(qmp::aligned_malloc(~std::uint64_t{0} - 40, 8), nullptr);
    EXPECT_EQ(qmp::aligned_malloc(1, std::uint64_t{1} << 63), nullptr);
}

TEST(GuardedAllocation, DamageIsThrownAsAText) {
    char* p = static_cast<char*>(qmp::aligned_malloc(13, 64));
    p[13] ^= 1;
    EXPECT_EQ(thrown_text([&] { qmp::aligned_free(p); }), "Memory buffer has been overrun.");
    p[20] ^= 1;
    p[13] ^= 1;
    EXPECT_EQ(thrown_text([&] { qmp::aligned_free(p); }), "Memory buffer has been overrun.");
    p[20] ^= 1;
    p[-1] ^= 1;
    EXPECT_EQ(thrown_text([&] { qmp::aligned_free(p); }), "Memory buffer has been underrun.");
    p[-1] ^= 1;
    qmp::aligned_free(p);
}

}  // namespace
