// The same promises on every system. What only machines of a certain kind have (reserved large pages, several
// nodes) is taken as it comes.
#include "platform/os/pages.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

namespace os = qmp::os;

constexpr std::uint64_t mebibyte = std::uint64_t{1} << 20;

// Of different pages different words.
void expect_usable(void* block, std::uint64_t bytes) {
    auto* words = static_cast<std::uint64_t*>(block);
    const std::uint64_t step = os::page_bytes / sizeof(std::uint64_t);
    for (std::uint64_t i = 0; i < bytes / sizeof(std::uint64_t); i += step) {
        ASSERT_EQ(words[i], 0u);
        words[i] = i + 1;
    }
    for (std::uint64_t i = 0; i < bytes / sizeof(std::uint64_t); i += step) ASSERT_EQ(words[i], i + 1);
    static_cast<char*>(block)[bytes - 1] = 1;
}

TEST(Pages, ACommittedBlockIsThereAsAWhole) {
    os::PageSource& pages = os::system_pages();
    for (const bool prefer_large : {false, true}) {
        for (const std::uint64_t bytes :
             {os::page_bytes, 3 * os::page_bytes, 2 * mebibyte, 9 * mebibyte + 4096}) {
            void* block = pages.commit(bytes, prefer_large);
            ASSERT_NE(block, nullptr);
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % os::page_bytes, 0u);
            expect_usable(block, bytes);
            const os::LargeShare share = pages.large_share(block, bytes);
            EXPECT_GE(share.fraction, 0.0);
            EXPECT_LE(share.fraction, prefer_large ? 1.0 : 0.0);
            if (share.fraction == 0.0) {
                EXPECT_EQ(share.page_size, os::page_bytes);
            } else {
                EXPECT_GT(share.page_size, os::page_bytes);
            }
            pages.release(block, bytes);
        }
    }
}

TEST(Pages, BlocksSideBySideKeepTheirOwnShare) {
    os::PageSource& pages = os::system_pages();
    constexpr std::uint64_t bytes = 8 * mebibyte;
    std::vector<void*> blocks;
    for (int i = 0; i < 4; ++i) {
        blocks.push_back(pages.commit(bytes, true));
        ASSERT_NE(blocks.back(), nullptr);
    }
    // Only the first is written to: nothing of the others is there yet.
    std::memset(blocks.front(), 1, bytes);
    for (std::size_t i = 1; i < blocks.size(); ++i)
        EXPECT_EQ(pages.large_share(blocks[i], bytes).fraction, 0.0);
    for (void* block : blocks) pages.release(block, bytes);
}

TEST(Pages, WhatTheMachineCannotHoldIsRefused) {
    os::PageSource& pages = os::system_pages();
    for (const std::uint64_t bytes : {std::uint64_t{0}, std::uint64_t{1} << 60, std::uint64_t{1} << 62,
                                      ~std::uint64_t{0} & ~(os::page_bytes - 1)}) {
        EXPECT_EQ(pages.commit(bytes, true), nullptr);
        EXPECT_EQ(pages.commit(bytes, false), nullptr);
        EXPECT_EQ(pages.reserve(bytes), nullptr);
        EXPECT_EQ(pages.commit_large(bytes), nullptr);
    }
}

TEST(Pages, LargePagesAreThereOrRefused) {
    os::PageSource& pages = os::system_pages();
    const std::uint64_t size = pages.large_page_size();
    if (size == 0) GTEST_SKIP() << "no large pages here";
    EXPECT_EQ(size & (size - 1), 0u);
    EXPECT_GT(size, os::page_bytes);
    void* block = pages.commit_large(2 * size);
    if (!block) GTEST_SKIP() << "no large pages left, or no right to them";
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % size, 0u);
    expect_usable(block, 2 * size);
    pages.release_large(block, 2 * size);
}

TEST(Pages, SinglePagesOfARegionAreCommitted) {
    os::PageSource& pages = os::system_pages();
    constexpr std::uint64_t count = 64;
    constexpr std::uint64_t bytes = count * os::page_bytes;
    char* region = static_cast<char*>(pages.reserve(bytes));
    ASSERT_NE(region, nullptr);
    std::vector<void*> addresses;
    const auto on_node = pages.pages_of_node(0);
    const auto on_no_node = pages.pages_of_node(~std::uint64_t{0});
    for (std::uint64_t i = 0; i < count; ++i) {
        addresses.push_back(region + i * os::page_bytes);
        EXPECT_FALSE(on_no_node->commit(addresses.back(), os::page_bytes));
        if (i % 2 != 0 || !on_node->commit(addresses.back(), os::page_bytes)) {
            ASSERT_TRUE(pages.commit_reserved(addresses.back(), os::page_bytes));
        }
    }
    expect_usable(region, bytes);
    std::vector<std::int32_t> nodes(count, 999);
    pages.find_nodes(addresses, nodes);
    for (const std::int32_t node : nodes) {
        EXPECT_GE(node, os::unknown_node);
        EXPECT_LT(node, 999);
    }
    pages.release(region, bytes);
}

TEST(Pages, ALockedBlockIsUsedAndReleasedLikeAnother) {
    os::PageSource& pages = os::system_pages();
    void* block = pages.commit(16 * os::page_bytes, false);
    ASSERT_NE(block, nullptr);
    expect_usable(block, 16 * os::page_bytes);
    pages.lock(block, 16 * os::page_bytes);  // or not
    EXPECT_EQ(static_cast<std::uint64_t*>(block)[0], 1u);
    pages.release(block, 16 * os::page_bytes);
}

}  // namespace
