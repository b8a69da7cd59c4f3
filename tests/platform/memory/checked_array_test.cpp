#include "platform/memory/checked_array.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "support/fatal.h"

namespace {

std::uint64_t word_at(const void* p, std::int64_t offset) {
    std::uint64_t word;
    std::memcpy(&word, static_cast<const char*>(p) + offset, 8);
    return word;
}

void set_word_at(void* p, std::int64_t offset, std::uint64_t word) {
    std::memcpy(static_cast<char*>(p) + offset, &word, 8);
}

TEST(CheckedArray, HasTheStatedShape) {
    for (const std::uint64_t alignment : {1, 4, 8, 16, 64, 4096}) {
        for (const std::uint64_t bytes : {1, 7, 8, 9, 63, 64, 1000}) {
            void* p = qmp::checked_allocate(nullptr, bytes, alignment);
            const std::uint64_t rounded = (bytes + 7) / 8 * 8;
            EXPECT_EQ(reinterpret_cast<std::uint64_t>(p) % (alignment < 8 ? 8 : alignment), 0u);
            EXPECT_EQ(word_at(p, -8), 0x5451234810025523u);
            EXPECT_EQ(word_at(p, -16), rounded);
            EXPECT_EQ(word_at(p, static_cast<std::int64_t>(rounded)), 0x5451234810025523u);
            const std::uint64_t raw = word_at(p, -24);
            EXPECT_EQ(*reinterpret_cast<std::uint64_t*>(raw), 0u);
            EXPECT_GT(reinterpret_cast<std::uint64_t>(p), raw + 32);
            EXPECT_EQ(qmp::checked_check(p), rounded);
            std::memset(p, 0xff, rounded);
            EXPECT_EQ(qmp::checked_check(p), rounded);
            qmp::checked_free(p);
        }
    }
}

TEST(CheckedArray, ZeroBytesAreTheAddressOfAllOnes) {
    void* p = qmp::checked_allocate(nullptr, 0, 64);
    EXPECT_EQ(reinterpret_cast<std::uint64_t>(p), ~std::uint64_t{0});
    EXPECT_EQ(qmp::checked_check(p), 0u);
    qmp::checked_free(p);
    qmp::checked_free(nullptr);
}

TEST(CheckedArray, ComesFromItsRegionAndGoesBackThere) {
    std::vector<std::uint64_t> memory(1000);
    qmp::RegionAllocator region(memory.data(), memory.size() * 8);
    void* a = qmp::checked_allocate(&region, 100, 64);
    void* b = qmp::checked_allocate(&region, 200, 64);
    EXPECT_EQ(region.count(), 2u);
    EXPECT_GE(a, static_cast<void*>(memory.data()));
    EXPECT_LT(b, static_cast<void*>(memory.data() + memory.size()));
    EXPECT_EQ(*reinterpret_cast<qmp::RegionAllocator**>(word_at(a, -24)), &region);
    // What a plan reserves for an array covers all of it, its record included.
    EXPECT_LE(region.used_bytes() + 2 * 16, 100 + 200 + 2 * qmp::checked_array_overhead(64));
    qmp::checked_free(a);
    EXPECT_EQ(region.count(), 1u);
    qmp::checked_free(b);
    EXPECT_EQ(region.count(), 0u);
}

TEST(CheckedWords, OwnTheirArrayAndMove) {
    std::vector<std::uint64_t> memory(1000);
    qmp::RegionAllocator region(memory.data(), memory.size() * 8);
    {
        qmp::CheckedWords a(&region, 10);
        EXPECT_EQ(reinterpret_cast<std::uint64_t>(a.data()) % 64, 0u);
        EXPECT_EQ(a.words(), 10u);
        qmp::CheckedWords b(std::move(a));
        EXPECT_EQ(a.data(), nullptr);
        EXPECT_EQ(region.count(), 1u);
        qmp::CheckedWords c(&region, 20);
        c = std::move(b);
        EXPECT_EQ(c.words(), 10u);
        c.check();
        EXPECT_EQ(region.count(), 2u);
    }
    EXPECT_EQ(region.count(), 0u);
    qmp::CheckedWords none(&region, 0);
    none.check();
    EXPECT_EQ(region.count(), 0u);
}

#if GTEST_HAS_DEATH_TEST
TEST(CheckedArrayDeathTest, DamageEndsTheProgram) {
    void* p = qmp::checked_allocate(nullptr, 24, 64);
    EXPECT_CRASH(
        {
            set_word_at(p, 24, 0x123456789abcdef0);
            qmp::checked_check(p);
        },
        "\n0x123456789abcdef0\n\n\nFATAL ERROR: Assertion Failure\n\n"
        "Array Bounds Checking: An array over-run has been detected.\n");
    EXPECT_CRASH(
        {
            set_word_at(p, -8, 0xfedcba9876543210);
            set_word_at(p, 24, 0);  // the head is looked at first
            qmp::checked_free(p);
        },
        "\n0xfedcba9876543210\n\n\nFATAL ERROR: Assertion Failure\n\n"
        "Array Bounds Checking: An array under-run has been detected.\n");
    qmp::checked_free(p);
}

TEST(CheckedArrayDeathTest, MemoryThatCannotBeHadEndsTheProgram) {
    EXPECT_FATAL(
        {
            std::uint64_t memory[16] = {};
            qmp::RegionAllocator region(memory, sizeof memory);
            qmp::checked_allocate(&region, 128, 8);
        },
        "Memory Allocation Failure.");
    EXPECT_FATAL(qmp::checked_allocate(nullptr, ~std::uint64_t{0} - 60, 64), "Memory Allocation Failure.");
    EXPECT_FATAL(qmp::checked_allocate(nullptr, std::uint64_t{1} << 62, 64), "Memory Allocation Failure.");
}
#endif

}  // namespace
