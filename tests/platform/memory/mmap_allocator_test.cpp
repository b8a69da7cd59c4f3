#include "platform/memory/mmap_allocator.h"

#include <gtest/gtest.h>

#include "config/text_cursor.h"
#include "errors/exception.h"
#include "platform/memory/fake_memory.h"
#include "platform/memory/registry.h"
#include "platform/os/process.h"
#include "platform/parallel/push_pool_parallelizer.h"
#include "support/console.h"
#include "support/fatal.h"

namespace {

using kelvara_test::expect_filled;
using kelvara_test::FakeMemoryMachine;
using kelvara_test::printed_by;
using qmp::MmapAllocator;
using qmp::PageMode;

constexpr std::uint64_t large_page = std::uint64_t{1} << 16;

std::unique_ptr<qmp::HeapBlock> heap_of(FakeMemoryMachine& machine, PageMode large, PageMode locked,
                                        std::uint64_t bytes) {
    MmapAllocator allocator(machine.system());
    allocator.large_pages = large;
    allocator.locked_pages = locked;
    return allocator.create_heap(bytes, nullptr, 1);
}

TEST(MmapAllocator, LargePagesCountAsLocked) {
    FakeMemoryMachine machine;
    machine.pages.large_page = large_page;
    machine.pages.large_pages_left = true;
    for (const PageMode large : {PageMode::attempt, PageMode::forced}) {
        for (const PageMode locked : {PageMode::disabled, PageMode::attempt, PageMode::forced}) {
            const auto block = heap_of(machine, large, locked, large_page + 1);
            ASSERT_NE(block->base, nullptr);
            EXPECT_EQ(block->size, 2 * large_page);
            EXPECT_EQ(block->locked, 1.0);
            EXPECT_EQ(block->large, 1.0);
            EXPECT_EQ(block->page_size, large_page);
            EXPECT_EQ(block->spread, nullptr);
            expect_filled(block->base, block->size);
        }
    }
    EXPECT_EQ(machine.pages.locks, 0u);
    EXPECT_EQ(machine.right.asked, 1);
}

TEST(MmapAllocator, LargePagesAreFilledAsOneRange) {
    FakeMemoryMachine machine;
    machine.pages.large_page = large_page;
    machine.pages.large_pages_left = true;
    qmp::PushPoolParallelizer framework;
    MmapAllocator allocator(machine.system());
    const auto block = allocator.create_heap(4 * large_page, &framework, 16);
    expect_filled(block->base, block->size);
}

TEST(MmapAllocator, NormalPagesAreFilledInParallel) {
    FakeMemoryMachine machine;
    qmp::PushPoolParallelizer framework;
    MmapAllocator allocator(machine.system());
    const auto block = allocator.create_heap(4 * 4096, &framework, 16);
    for (std::uint64_t i = 0; i < 4; ++i) expect_filled(static_cast<char*>(block->base) + i * 4096, 4096);
}

TEST(MmapAllocator, AttemptFallsBackToNormalPages) {
    FakeMemoryMachine machine;
    machine.pages.large_page = large_page;
    const auto block = heap_of(machine, PageMode::attempt, PageMode::attempt, 4097);
    ASSERT_NE(block->base, nullptr);
    EXPECT_EQ(block->size, 8192u);
    EXPECT_EQ(block->large, 0.0);
    EXPECT_EQ(block->locked, 1.0);
    EXPECT_EQ(block->page_size, 4096u);
    EXPECT_EQ(machine.pages.large_commits, (std::vector<std::uint64_t>{large_page}));
    EXPECT_EQ(machine.pages.commits, (std::vector<std::uint64_t>{8192}));
    EXPECT_EQ(machine.pages.preferred_large, (std::vector<bool>{true}));
    EXPECT_EQ(machine.pages.locked_bytes, 8192u);
    expect_filled(block->base, 8192);
}

TEST(MmapAllocator, WhatTheSystemJoinsByItselfIsTold) {
    FakeMemoryMachine machine;
    machine.pages.share_by_itself = {0.75, large_page};
    const auto block = heap_of(machine, PageMode::attempt, PageMode::disabled, 4096);
    EXPECT_EQ(block->large, 0.75);
    EXPECT_EQ(block->page_size, large_page);
    EXPECT_EQ(block->locked, 0.0);
}

TEST(MmapAllocator, DisabledLargePagesAreNotAskedFor) {
    FakeMemoryMachine machine;
    machine.pages.large_page = large_page;
    machine.pages.large_pages_left = true;
    machine.pages.share_by_itself = {0.75, large_page};
    const auto block = heap_of(machine, PageMode::disabled, PageMode::disabled, 4096);
    EXPECT_TRUE(machine.pages.large_commits.empty());
    EXPECT_EQ(machine.pages.preferred_large, (std::vector<bool>{false}));
    EXPECT_EQ(block->large, 0.0);
    EXPECT_EQ(machine.pages.locks, 0u);
    EXPECT_EQ(machine.right.asked, 0);
}

TEST(MmapAllocator, ForcedLargePagesAreNoNormalOnes) {
    FakeMemoryMachine machine;
    for (const std::uint64_t page : {std::uint64_t{0}, large_page}) {
        machine.pages.large_page = page;
        EXPECT_EQ(heap_of(machine, PageMode::forced, PageMode::attempt, 4096)->base, nullptr);
    }
    EXPECT_TRUE(machine.pages.commits.empty());
}

TEST(MmapAllocator, ABlockThatCannotBeLockedIsKeptUnlessForced) {
    FakeMemoryMachine machine;
    machine.pages.lockable = false;
    const auto block = heap_of(machine, PageMode::disabled, PageMode::attempt, 4096);
    ASSERT_NE(block->base, nullptr);
    EXPECT_EQ(block->locked, 0.0);
    EXPECT_EQ(machine.pages.live.size(), 1u);
    EXPECT_EQ(heap_of(machine, PageMode::disabled, PageMode::forced, 4096)->base, nullptr);
    EXPECT_EQ(machine.pages.live.size(), 1u);
    EXPECT_EQ(machine.pages.locks, 2u);
    machine.pages.lockable = true;
    EXPECT_EQ(heap_of(machine, PageMode::disabled, PageMode::forced, 4096)->locked, 1.0);
}

TEST(MmapAllocator, WithoutThePrivilegeTheCallsDecide) {
    FakeMemoryMachine machine;
    machine.right.held = false;
    EXPECT_EQ(heap_of(machine, PageMode::attempt, PageMode::attempt, 4096)->locked, 1.0);
    machine.pages.lockable = false;
    EXPECT_EQ(heap_of(machine, PageMode::attempt, PageMode::attempt, 4096)->locked, 0.0);
}

TEST(MmapAllocator, WithoutMemoryTheBaseIsNull) {
    FakeMemoryMachine machine;
    machine.pages.normal_pages_left = false;
    EXPECT_EQ(heap_of(machine, PageMode::attempt, PageMode::attempt, 4096)->base, nullptr);
    machine.pages.large_page = large_page;
    // Rounded up these sizes do not fit 64 bits.
    EXPECT_EQ(heap_of(machine, PageMode::attempt, PageMode::attempt, ~std::uint64_t{0} - 100)->base, nullptr);
    EXPECT_EQ(machine.pages.large_commits, std::vector<std::uint64_t>{});
}

TEST(MmapAllocator, AsksForThePrivilegeThatItsModesNeed) {
    for (const bool held : {true, false}) {
        for (const PageMode large : {PageMode::disabled, PageMode::attempt, PageMode::forced}) {
            for (const PageMode locked : {PageMode::disabled, PageMode::attempt, PageMode::forced}) {
                FakeMemoryMachine machine;
                machine.right.held = held;
                MmapAllocator allocator(machine.system());
                allocator.large_pages = large;
                allocator.locked_pages = locked;
                const bool needed = large != PageMode::disabled || locked != PageMode::disabled;
                const std::string permission =
                    qmp::os::system_name() == "Windows" ? "SeLockMemoryPrivilege" : "CAP_IPC_LOCK";
                EXPECT_EQ(printed_by([&] { EXPECT_EQ(allocator.acquire_privileges(), held || !needed); }),
                          held || !needed ? ""
                                          : "\nUnable to acquire the permission, \"" + permission +
                                                "\".\nLarge pages and page locking may not be possible.\n\n");
                EXPECT_EQ(machine.right.asked, needed ? 1 : 0);
            }
        }
    }
}

TEST(MmapAllocator, NamesTheSystemsInterface) {
    const auto allocator = qmp::make_allocator("mmap");
    EXPECT_STREQ(allocator->get_type_name(), "mmap");
    EXPECT_STREQ(allocator->get_display_name(),
                 qmp::os::system_name() == "Windows" ? "WinAPI VirtualAlloc()" : "Linux mmap()");
}

TEST(MmapAllocatorMenu, ShowsBothModes) {
    MmapAllocator allocator;
    std::uint64_t highest = 0;
    EXPECT_EQ(printed_by([&] { highest = allocator.print_menu_options(); }),
              "   3    Large Pages:            Attempt\n"
              "   4    Lock Pages in Memory:   Attempt\n");
    EXPECT_EQ(highest, 4u);
    allocator.large_pages = PageMode::forced;
    allocator.locked_pages = PageMode::disabled;
    EXPECT_EQ(printed_by([&] { allocator.print_menu_options(); }),
              "   3    Large Pages:            Forced\n"
              "   4    Lock Pages in Memory:   Disabled\n"
              "        (If large pages are used, they will be forcibly locked in memory.)\n");
    allocator.large_pages = PageMode::disabled;
    EXPECT_EQ(printed_by([&] { allocator.print_menu_options(); }),
              "   3    Large Pages:            Disabled\n"
              "   4    Lock Pages in Memory:   Disabled\n");
}

TEST(MmapAllocatorMenu, TheOptionsGoRoundTheModes) {
    MmapAllocator allocator;
    std::vector<PageMode> seen;
    for (int i = 0; i < 4; ++i) {
        allocator.handle_menu_option(3);
        seen.push_back(allocator.large_pages);
    }
    const std::vector<PageMode> expected = {PageMode::forced, PageMode::disabled, PageMode::attempt,
                                            PageMode::forced};
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(allocator.locked_pages, PageMode::attempt);
    seen.clear();
    for (int i = 0; i < 4; ++i) {
        allocator.handle_menu_option(4);
        seen.push_back(allocator.locked_pages);
    }
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(allocator.large_pages, PageMode::forced);
    allocator.large_pages = static_cast<PageMode>(7);
    allocator.handle_menu_option(3);
    EXPECT_EQ(allocator.large_pages, PageMode::attempt);
}

TEST(MmapAllocatorSettings, ComeBackAsTheyWerePrinted) {
    MmapAllocator allocator;
    allocator.large_pages = PageMode::forced;
    allocator.locked_pages = PageMode::disabled;
    const std::string text = allocator.print_settings();
    EXPECT_EQ(text, "    largepages    :\t2\r\n    locked        :\t0\r\n");
    MmapAllocator copy;
    qmp::TextCursor cursor(text);
    copy.load_settings(cursor);
    EXPECT_EQ(copy.large_pages, PageMode::forced);
    EXPECT_EQ(copy.locked_pages, PageMode::disabled);
    // Numbers that are no mode are kept.
    qmp::TextCursor others("-3 7");
    copy.load_settings(others);
    EXPECT_EQ(copy.print_settings(), "    largepages    :\t-3\r\n    locked        :\t7\r\n");
}

TEST(MmapAllocatorSettings, ABrokenRecordChangesNothing) {
    MmapAllocator allocator;
    qmp::TextCursor cursor("2 x");
    EXPECT_THROW(allocator.load_settings(cursor), qmp::ParseException);
    EXPECT_EQ(allocator.large_pages, PageMode::attempt);
}

TEST(MmapAllocatorConfig, ComesBackAsItWasWritten) {
    MmapAllocator allocator;
    allocator.large_pages = PageMode::forced;
    allocator.locked_pages = PageMode::disabled;
    qmp::notation::Object object = allocator.write_config();
    ASSERT_EQ(object.members().size(), 2u);
    EXPECT_EQ(object.members()[0].key, "LargePages");
    EXPECT_EQ(object.members()[1].key, "LockedPages");
    EXPECT_EQ(object.get_string("LargePages", ""), "forced");
    EXPECT_EQ(object.get_string("LockedPages", ""), "disabled");
    object.insert_string("Allocator", "mmap");  // another reader's
    MmapAllocator copy;
    copy.read_config(object);
    EXPECT_EQ(copy.large_pages, PageMode::forced);
    EXPECT_EQ(copy.locked_pages, PageMode::disabled);
}

template <typename Exception>
std::string refusal_of(const char* large, const char* locked) {
    qmp::notation::Object object;
    if (large) object.insert_string("LargePages", large);
    if (locked) object.insert_string("LockedPages", locked);
    MmapAllocator allocator;
    try {
        allocator.read_config(object);
    } catch (const Exception& exception) {
        EXPECT_EQ(allocator.large_pages, PageMode::attempt);
        EXPECT_EQ(allocator.locked_pages, PageMode::attempt);
        return exception.message();
    }
    return "nothing was thrown";
}

TEST(MmapAllocatorConfig, RefusesWhatIsNoMode) {
    using qmp::InvalidParametersException;
    EXPECT_EQ(refusal_of<InvalidParametersException>("Forced", "forced"), "Invalid Mode: Forced");
    EXPECT_EQ(refusal_of<InvalidParametersException>("forced", ""), "Invalid Mode: ");
    EXPECT_EQ(refusal_of<qmp::ParseException>("forced", nullptr), "Key not found: LockedPages");
    EXPECT_EQ(refusal_of<qmp::ParseException>(nullptr, "forced"), "Key not found: LargePages");
    qmp::notation::Object object;
    object.insert_integer("LargePages", 1);
    MmapAllocator allocator;
    try {
        allocator.read_config(object);
        FAIL();
    } catch (const qmp::ParseException& exception) {
        EXPECT_EQ(exception.message(), "Memory Allocator: Expected String, got Integer.");
    }
}

TEST(PageMode, ANumberThatIsNoModeHasNoText) {
    try {
        qmp::mode_to_string(static_cast<PageMode>(3));
        FAIL();
    } catch (const qmp::InvalidParametersException& exception) {
        EXPECT_EQ(exception.message(), "Invalid Mode");
        EXPECT_EQ(exception.function(), "mode_to_string");
    }
}

#if GTEST_HAS_DEATH_TEST
TEST(MmapAllocatorDeathTest, ForcedPagesThatCannotBeHadEndTheProgram) {
    FakeMemoryMachine machine;
    machine.right.held = false;
    machine.pages.large_page = large_page;
    MmapAllocator allocator(machine.system());
    allocator.large_pages = PageMode::forced;
    EXPECT_FATAL(qmp::allocate_large_heap(allocator, "Working Memory... ", std::uint64_t{1} << 20,
                                          qmp::ParallelContext::sequential()),
                 "Working Memory... \n\nLarge heap allocation failed.\n\nFailed Allocation: 1.00 MiB\n\n");
}
#endif

}  // namespace
