// The allocators' registry and menu, the heap of "C malloc()", and the report of the large heap.
#include <gtest/gtest.h>

#include <cstring>

#include "errors/exception.h"
#include "platform/memory/malloc_allocator.h"
#include "platform/memory/registry.h"
#include "platform/os/memory.h"
#include "platform/parallel/push_pool_parallelizer.h"
#include "support/console.h"
#include "support/fatal.h"

namespace {

using kelvara_test::printed_by;

TEST(AllocatorRegistry, MakesAllocatorsByKey) {
    const auto allocator = qmp::make_allocator("malloc");
    EXPECT_STREQ(allocator->get_type_name(), "malloc");
    EXPECT_STREQ(allocator->get_display_name(), "C malloc()");
    EXPECT_EQ(qmp::allocator_display_names(),
              (std::vector<std::string>{"C malloc()", qmp::os::page_interface_name(), "Node Interleaving"}));
}

TEST(AllocatorRegistry, RefusesUnknownKeys) {
    try {
        qmp::make_allocator("Malloc");
        FAIL();
    } catch (const qmp::InvalidParametersException& exception) {
        EXPECT_EQ(exception.message(), "Invalid Memory Allocator: Malloc");
    }
}

TEST(AllocatorMenu, ListsAndMakesTheChosenOne) {
    const std::string pages = qmp::os::page_interface_name();
    const char* const keys[] = {"malloc", "mmap", "interleave"};
    qmp::make_allocator("interleave");  // the machine's nodes are looked at, and printed, once
    for (int number = 0; number < 3; ++number) {
        const kelvara_test::FedInput typed("3\n-1\n" + std::to_string(number) + "\n");
        std::unique_ptr<qmp::BasicAllocator> chosen;
        EXPECT_EQ(printed_by([&] { chosen = qmp::select_allocator(); }),
                  "Select a Memory Allocator:\n\n   0    C malloc()\n   1    " + pages +
                      "\n   2    Node Interleaving\n\noption: option: option: ");
        EXPECT_STREQ(chosen->get_type_name(), keys[number]);
    }
}

TEST(MallocAllocator, HasNoSettings) {
    qmp::MallocAllocator allocator;
    EXPECT_EQ(printed_by([&] { EXPECT_EQ(allocator.print_menu_options(), 2u); }), "");
    EXPECT_EQ(allocator.print_settings(), "");
    EXPECT_TRUE(allocator.acquire_privileges());
}

std::uint64_t word_at(const void* p, std::int64_t offset) {
    std::uint64_t word;
    std::memcpy(&word, static_cast<const char*>(p) + offset, 8);
    return word;
}

TEST(MallocAllocator, TheHeapHasTheStatedShape) {
    qmp::MallocAllocator allocator;
    qmp::PushPoolParallelizer framework;
    for (qmp::BasicParallelizer* parallelizer :
         {static_cast<qmp::BasicParallelizer*>(nullptr), static_cast<qmp::BasicParallelizer*>(&framework)}) {
        const auto block = allocator.create_heap(1000, parallelizer, 16);
        ASSERT_NE(block->base, nullptr);
        EXPECT_EQ(block->size, 1000u);
        const std::uint64_t p = reinterpret_cast<std::uint64_t>(block->base);
        EXPECT_EQ(p % 64, 0u);
        EXPECT_EQ(word_at(block->base, -8), 0xea097be64bd0187du);
        EXPECT_EQ(word_at(block->base, -16), 1000u);
        const std::uint64_t raw = word_at(block->base, -24);
        EXPECT_EQ(p, (raw + 24) / 64 * 64 + 64);
        EXPECT_LE(p + 1000 + 8, raw + 1000 + 96);
        EXPECT_EQ(word_at(block->base, 1000), 0xc72bf73f0559cfe4u);
        // The fill's first word; it begins anew in every block of the parallel fill.
        EXPECT_EQ(word_at(block->base, 0) & 0xffffffff, 0xc857661bu);
        EXPECT_EQ(word_at(block->base, 500) & 0xffffffff, parallelizer
                                                              ? (word_at(block->base, 0) & 0xffffffff)
                                                              : (0xc857661bu - 125u * 125u * 0x37d46e8bu));
        EXPECT_EQ(block->locked, 0.0);
        EXPECT_EQ(block->large, 0.0);
        EXPECT_EQ(block->page_size, 0u);
        EXPECT_EQ(block->spread, nullptr);
    }
}

TEST(MallocAllocator, WhatCannotBeCommittedLeavesBaseNull) {
    qmp::MallocAllocator allocator;
    EXPECT_EQ(allocator.create_heap(~std::uint64_t{0}, nullptr, 1)->base, nullptr);
    EXPECT_EQ(allocator.create_heap(std::uint64_t{1} << 60, nullptr, 1)->base, nullptr);
    // A size that the address space holds and the machine does not.
    if (const std::uint64_t most = qmp::os::committable_memory()) {
        EXPECT_EQ(allocator.create_heap(most + (std::uint64_t{1} << 34), nullptr, 1)->base, nullptr);
    }
}

// A block with chosen properties.
class StubAllocator : public qmp::BasicAllocator {
  public:
    const char* get_type_name() const override { return "stub"; }
    const char* get_display_name() const override { return "Stub"; }
    std::uint64_t print_menu_options() const override { return 2; }
    void handle_menu_option(std::uint64_t) override {}
    bool acquire_privileges() override { return true; }
    std::unique_ptr<qmp::HeapBlock> create_heap(std::uint64_t, qmp::BasicParallelizer*,
                                                std::uint64_t) override {
        return std::move(next);
    }
    std::unique_ptr<qmp::HeapBlock> next;
};

struct BlockShape {
    double locked;
    double large;
    std::uint64_t page_size;
    std::unique_ptr<qmp::SpreadRecord> spread;
};

std::string description_of(BlockShape shape) {
    StubAllocator allocator;
    allocator.next = std::make_unique<qmp::HeapBlock>();
    allocator.next->base = &allocator;
    allocator.next->size = std::uint64_t{1} << 30;
    allocator.next->locked = shape.locked;
    allocator.next->large = shape.large;
    allocator.next->page_size = shape.page_size;
    allocator.next->spread = std::move(shape.spread);
    std::string description;
    const std::string printed = printed_by([&] {
        description = qmp::allocate_large_heap(allocator, "Working Memory... ", std::uint64_t{1} << 30,
                                               qmp::ParallelContext::sequential())
                          .description;
    });
    EXPECT_EQ(printed, "Working Memory... " + description + "\n");
    return description;
}

std::unique_ptr<qmp::SpreadRecord> spread(std::uint64_t nodes, double value) {
    auto record = std::make_unique<qmp::SpreadRecord>();
    record->nodes = nodes;
    record->spread = value;
    return record;
}

TEST(LargeHeap, DescribesTheBlock) {
    EXPECT_EQ(description_of({0, 0, 0, nullptr}), "1.00 GiB");
    EXPECT_EQ(description_of({1.0, 0, 4096, nullptr}), "1.00 GiB  (locked)");
    EXPECT_EQ(description_of({0.999, 0, 4096, nullptr}), "1.00 GiB  (99% locked)");
    EXPECT_EQ(description_of({0.001, 0, 4096, nullptr}), "1.00 GiB  (0% locked)");
    EXPECT_EQ(description_of({0, 0.999, 2 << 20, nullptr}), "1.00 GiB  (99% 2.00 MiB pages)");
    EXPECT_EQ(description_of({0, 1.0, 0, nullptr}), "1.00 GiB  (large pages)");
    EXPECT_EQ(description_of({1.0, 1.0, 2 << 20, nullptr}), "1.00 GiB  (locked, 2.00 MiB pages)");
    EXPECT_EQ(description_of({0, 0.5, 0, nullptr}), "1.00 GiB  (50% large pages)");
    EXPECT_EQ(description_of({0.25, 0.5, 2 << 20, spread(4, 0.876)}),
              "1.00 GiB  (25% locked, 50% 2.00 MiB pages, spread: 87%/4)");
    EXPECT_EQ(description_of({0, 0, 4096, spread(0, -1.0)}), "1.00 GiB  (spread: ?)");
    EXPECT_EQ(description_of({0, 0, 4096, spread(2, -1.0)}), "1.00 GiB  (spread: ?)");
    EXPECT_EQ(description_of({0, 0, 4096, spread(2, 0.0)}), "1.00 GiB  (spread: 0%/2)");
    EXPECT_EQ(description_of({1.0, 0, 4096, spread(16, 0.999)}), "1.00 GiB  (locked, spread: 99%/16)");
    EXPECT_EQ(description_of({0, 0, 4096, spread(1, 1.0)}), "1.00 GiB  (spread: 100%/1)");
}

TEST(LargeHeap, AnEmptyLabelPrintsNothing) {
    qmp::MallocAllocator allocator;
    EXPECT_EQ(printed_by(
                  [&] { qmp::allocate_large_heap(allocator, "", 1000, qmp::ParallelContext::sequential()); }),
              "0.98 KiB\n");
}

#if GTEST_HAS_DEATH_TEST
TEST(LargeHeapDeathTest, AFailureEndsTheProgramAndNamesTheSize) {
    EXPECT_FATAL(
        {
            qmp::MallocAllocator allocator;
            qmp::allocate_large_heap(allocator, "Working Memory... ", std::uint64_t{1} << 60,
                                     qmp::ParallelContext::sequential());
        },
        "Working Memory... \n\nLarge heap allocation failed.\n\nFailed Allocation: 1.00 EiB\n\n");
}

TEST(MallocAllocatorDeathTest, ADamagedHeapEndsTheProgramWhenItIsFreed) {
    EXPECT_FATAL(
        {
            qmp::MallocAllocator allocator;
            auto block = allocator.create_heap(1000, nullptr, 1);
            static_cast<char*>(block->base)[1000] ^= 1;
            block.reset();
        },
        "Memory buffer has been overrun.");
}

class UnusedFactory : public qmp::AllocatorFactory {
  public:
    const char* get_display_name() const override { return "Unused"; }
    std::unique_ptr<qmp::BasicAllocator> create() const override { return nullptr; }
};

TEST(AllocatorRegistryDeathTest, AKeyRegisteredTwiceEndsTheProgram) {
    EXPECT_FATAL(qmp::register_allocator("malloc", std::make_unique<UnusedFactory>()),
                 "\nDuplicate Allocator Type\n");
}
#endif

}  // namespace
