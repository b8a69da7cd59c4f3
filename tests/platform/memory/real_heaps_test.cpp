// Heaps of every allocator from the system itself, whatever it has to give.
#include <gtest/gtest.h>

#include "platform/memory/interleave_allocator.h"
#include "platform/memory/mmap_allocator.h"
#include "platform/memory/registry.h"
#include "platform/os/memory.h"
#include "platform/os/process.h"
#include "platform/parallel/push_pool_parallelizer.h"
#include "support/console.h"

namespace {

void expect_writable(const qmp::HeapBlock& block) {
    auto* words = static_cast<std::uint64_t*>(block.base);
    const std::uint64_t count = block.size / sizeof(std::uint64_t);
    for (std::uint64_t i = 0; i < count; ++i) words[i] = i * 0x9e3779b97f4a7c15;
    for (std::uint64_t i = 0; i < count; ++i) ASSERT_EQ(words[i], i * 0x9e3779b97f4a7c15);
}

TEST(RealHeaps, EveryAllocatorGivesMemory) {
    qmp::PushPoolParallelizer framework;
    for (const char* key : {"malloc", "mmap", "interleave"}) {
        for (const std::uint64_t bytes : {1, 1000, 4096, 4097, 5000000}) {
            const auto allocator = qmp::make_allocator(key);
            const auto block = allocator->create_heap(bytes, &framework, 8);
            ASSERT_NE(block->base, nullptr) << key;
            EXPECT_GE(block->size, bytes);
            if (block->size >= 4) {
                EXPECT_EQ(*static_cast<std::uint32_t*>(block->base), 0xc857661b) << key;
            }
            expect_writable(*block);
        }
    }
}

TEST(RealHeaps, SizesAreRoundedUpToPages) {
    qmp::MmapAllocator mmap;
    mmap.large_pages = qmp::PageMode::disabled;
    qmp::InterleaveAllocator interleave;
    for (qmp::BasicAllocator* allocator :
         {static_cast<qmp::BasicAllocator*>(&mmap), static_cast<qmp::BasicAllocator*>(&interleave)}) {
        for (const std::uint64_t bytes : {1, 4095, 4096, 4097}) {
            const auto block = allocator->create_heap(bytes, nullptr, 1);
            EXPECT_EQ(block->size, (bytes + 4095) / 4096 * 4096);
            EXPECT_EQ(block->page_size, 4096u);
            EXPECT_EQ(block->large, 0.0);
            EXPECT_TRUE(block->locked == 0.0 || block->locked == 1.0);
        }
    }
}

TEST(RealHeaps, AttemptsGiveWhatThereIs) {
    qmp::MmapAllocator allocator;
    const auto block = allocator.create_heap(std::uint64_t{40} << 20, nullptr, 1);
    ASSERT_NE(block->base, nullptr);
    EXPECT_GE(block->large, 0.0);
    EXPECT_LE(block->large, 1.0);
    EXPECT_EQ(block->page_size > 4096, block->large > 0.0);
    expect_writable(*block);
}

// A block that was forced is either all that was asked for or not there.
TEST(RealHeaps, ForcedPagesAreThereOrNothingIs) {
    qmp::MmapAllocator large;
    large.large_pages = qmp::PageMode::forced;
    if (const auto block = large.create_heap(1 << 20, nullptr, 1); block->base) {
        EXPECT_EQ(block->large, 1.0);
        EXPECT_EQ(block->locked, 1.0);
    }
    qmp::MmapAllocator locked;
    locked.large_pages = qmp::PageMode::disabled;
    locked.locked_pages = qmp::PageMode::forced;
    if (const auto block = locked.create_heap(1 << 20, nullptr, 1); block->base) {
        EXPECT_EQ(block->locked, 1.0);
    }
}

TEST(RealHeaps, InterleavingOneNodePutsAllPagesThere) {
    for (const bool hashed : {true, false}) {
        qmp::InterleaveAllocator allocator;
        allocator.hashed = hashed;
        allocator.nodes = {0, 0};
        const auto block = allocator.create_heap(std::uint64_t{4} << 20, nullptr, 1);
        ASSERT_NE(block->base, nullptr);
        ASSERT_NE(block->spread, nullptr);
        // Or the system does not tell.
        if (block->spread->nodes == 1) {
            EXPECT_EQ(block->spread->spread, 1.0);
        }
        if (block->spread->nodes == 0) {
            EXPECT_EQ(block->spread->spread, -1.0);
        }
        expect_writable(*block);
    }
}

TEST(RealHeaps, NodesThatDoNotExistBindNothing) {
    qmp::InterleaveAllocator allocator;
    allocator.nodes = {63, ~std::uint64_t{0}, std::uint64_t{1} << 40};
    const auto block = allocator.create_heap(1 << 20, nullptr, 1);
    ASSERT_NE(block->base, nullptr);
    expect_writable(*block);
}

TEST(RealHeaps, WhatTheMachineCannotHoldIsRefused) {
    for (const char* key : {"malloc", "mmap", "interleave"}) {
        const auto allocator = qmp::make_allocator(key);
        EXPECT_EQ(allocator->create_heap(std::uint64_t{1} << 60, nullptr, 1)->base, nullptr) << key;
        EXPECT_EQ(allocator->create_heap(~std::uint64_t{0}, nullptr, 1)->base, nullptr) << key;
        // More than there is, and less than the address space holds: a system that counts what it has
        // promised knows when the pages are asked for, one that does not must be asked before.
        const std::uint64_t most = qmp::os::committable_memory();
        if (most == 0 || qmp::os::system_name() != "Linux") continue;
        EXPECT_EQ(allocator->create_heap(most + (std::uint64_t{1} << 34), nullptr, 1)->base, nullptr) << key;
    }
}

}  // namespace
