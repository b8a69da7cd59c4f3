#include "platform/memory/interleave_allocator.h"

#include <gtest/gtest.h>

#include "config/text_cursor.h"
#include "errors/exception.h"
#include "platform/crc32c.h"
#include "platform/memory/fake_memory.h"
#include "platform/memory/interleaved_commit.h"
#include "platform/memory/registry.h"
#include "support/console.h"

namespace {

using kelvara_test::expect_filled;
using kelvara_test::FakeMemoryMachine;
using kelvara_test::printed_by;
using qmp::InterleaveAllocator;
using qmp::PageMode;

using Nodes = std::vector<std::uint64_t>;

std::unique_ptr<qmp::HeapBlock> heap_of(FakeMemoryMachine& machine, const Nodes& nodes, bool hashed,
                                        std::uint64_t bytes, PageMode locked = PageMode::disabled) {
    InterleaveAllocator allocator(machine.system());
    allocator.nodes = nodes;
    allocator.hashed = hashed;
    allocator.locked_pages = locked;
    return allocator.create_heap(bytes, nullptr, 1);
}

TEST(NodeSpread, FollowsTheFormula) {
    const auto spread = [](const qmp::NodePageCounts& counts) { return qmp::spread_of(counts).spread; };
    EXPECT_EQ(spread({}), -1.0);
    EXPECT_EQ(spread({{0, 100}}), 1.0);
    EXPECT_EQ(spread({{0, 50}, {1, 50}}), 1.0);
    EXPECT_DOUBLE_EQ(spread({{0, 75}, {1, 25}}), 0.5);
    EXPECT_DOUBLE_EQ(spread({{3, 25}, {7, 75}}), 0.5);
    EXPECT_EQ(spread({{0, 10}, {1, 10}, {2, 10}}), 1.0);
    // 1 - sqrt((20^2 + 20^2 + 40^2) / 2 * 3) / 120
    EXPECT_DOUBLE_EQ(spread({{0, 20}, {1, 20}, {2, 80}}), 1.0 - 60.0 / 120.0);
    EXPECT_EQ(spread({{0, 1000000}, {1, 0}}), 0.0);
    EXPECT_EQ(qmp::spread_of({}).nodes, 0u);
    EXPECT_EQ(qmp::spread_of({{5, 1}}).nodes, 1u);
    EXPECT_EQ(qmp::spread_of({{5, 1}, {6, 1}}).nodes, 2u);
}

TEST(Crc32c, IsTheSameWithAndWithoutTheInstruction) {
    // The last step of the published check value of "123456789", and words against bits one by one.
    const auto by_bits = [](std::uint32_t crc, std::uint64_t word) {
        for (int bit = 0; bit < 64; ++bit, word >>= 1) {
            const bool carry = ((crc ^ word) & 1) != 0;
            crc = crc >> 1 ^ (carry ? 0x82f63b78u : 0u);
        }
        return crc;
    };
    // The CRC of eight zero bytes from all ones, inverted, as published for this polynomial: 0x8c28b28a.
    EXPECT_EQ(~qmp::crc32c_portable(0xffffffffu, 0), 0x8c28b28au);
    std::uint64_t word = 1;
    std::uint32_t crc = 0;
    for (int i = 0; i < 2000; ++i) {
        word = word * 6364136223846793005u + 1442695040888963407u;
        const std::uint32_t expected = by_bits(crc, word);
        ASSERT_EQ(qmp::crc32c_portable(crc, word), expected);
        ASSERT_EQ(qmp::crc32c(crc, word), expected);
        crc = i % 3 == 0 ? 0 : expected;
    }
}

TEST(InterleaveAllocator, GoesRoundTheNodesPageByPage) {
    FakeMemoryMachine machine;
    machine.set_nodes(2);
    const auto block = heap_of(machine, {0, 0, 1}, false, 99 * 4096 - 5);
    ASSERT_NE(block->base, nullptr);
    EXPECT_EQ(block->size, 99u * 4096);
    EXPECT_EQ(block->page_size, 4096u);
    EXPECT_EQ(block->large, 0.0);
    EXPECT_EQ(block->locked, 0.0);
    char* page = static_cast<char*>(block->base);
    std::uint64_t on_node_0 = 0;
    for (std::uint64_t i = 0; i < 99; ++i, page += 4096) {
        EXPECT_EQ(machine.pages.placed.at(page), i % 3 == 2 ? 1 : 0);
        on_node_0 += machine.pages.placed.at(page) == 0 ? 1 : 0;
        expect_filled(page, 4096);
    }
    EXPECT_EQ(on_node_0, 66u);
    ASSERT_NE(block->spread, nullptr);
    EXPECT_EQ(block->spread->nodes, 2u);
    // 1 - sqrt((16.5^2 + 16.5^2) * 2) / 99
    EXPECT_NEAR(block->spread->spread, 1.0 - 33.0 / 99.0, 1e-12);
    EXPECT_EQ(machine.nodes.bound, (std::multiset<std::uint64_t>{0, 0, 1}));
}

TEST(InterleaveAllocator, HashesTheAddressesOfPages) {
    FakeMemoryMachine machine;
    machine.set_nodes(3);
    const auto block = heap_of(machine, {2, 0, 1}, true, 500 * 4096);
    ASSERT_NE(block->base, nullptr);
    const std::int32_t nodes[] = {2, 0, 1};
    char* page = static_cast<char*>(block->base);
    for (std::uint64_t i = 0; i < 500; ++i, page += 4096) {
        const std::uint64_t hash = qmp::crc32c_portable(0, reinterpret_cast<std::uintptr_t>(page));
        EXPECT_EQ(machine.pages.placed.at(page), nodes[hash % 3]);
        expect_filled(page, 4096);
    }
    EXPECT_EQ(machine.pages.placed.size(), 500u);
    EXPECT_EQ(block->spread->nodes, 3u);
    EXPECT_GT(block->spread->spread, 0.5);
}

TEST(InterleaveAllocator, EvenSharesAreASpreadOfOne) {
    FakeMemoryMachine machine;
    machine.set_nodes(2);
    const auto block = heap_of(machine, {0, 1}, false, 100 * 4096);
    EXPECT_EQ(block->spread->spread, 1.0);
    EXPECT_EQ(block->spread->nodes, 2u);
}

TEST(InterleaveAllocator, SharesOfThreeToOneAreHalfASpread) {
    FakeMemoryMachine machine;
    machine.set_nodes(2);
    const auto block = heap_of(machine, {0, 0, 0, 1}, false, 100 * 4096);
    EXPECT_DOUBLE_EQ(block->spread->spread, 0.5);
}

TEST(InterleaveAllocator, ASystemThatDoesNotTellLeavesTheSpreadOpen) {
    FakeMemoryMachine machine;
    const auto block = heap_of(machine, {7}, false, 100 * 4096);  // not a node; the pages come from elsewhere
    ASSERT_NE(block->base, nullptr);
    EXPECT_EQ(block->spread->nodes, 0u);
    EXPECT_EQ(block->spread->spread, -1.0);
    expect_filled(block->base, 4096);
}

TEST(InterleaveAllocator, APageThatItsNodeRefusesComesFromAnother) {
    FakeMemoryMachine machine;
    machine.set_nodes(2);
    machine.pages.full_node = 1;
    machine.pages.node_of_others = 0;
    const auto block = heap_of(machine, {0, 1}, false, 10 * 4096);
    ASSERT_NE(block->base, nullptr);
    EXPECT_EQ(machine.pages.placed.size(), 10u);
    EXPECT_EQ(block->spread->nodes, 1u);
    EXPECT_EQ(block->spread->spread, 1.0);
    expect_filled(static_cast<char*>(block->base) + 4096, 4096);
}

TEST(InterleaveAllocator, OnePageThatCannotBeHadFailsTheBlock) {
    for (const bool hashed : {true, false}) {
        for (const std::int64_t broken : {0, 5, 9}) {
            FakeMemoryMachine machine;
            machine.set_nodes(2);
            machine.pages.broken_page = broken;
            const auto block = heap_of(machine, {0, 1}, hashed, 10 * 4096, PageMode::attempt);
            EXPECT_EQ(block->base, nullptr);
            EXPECT_TRUE(machine.pages.live.empty());
            EXPECT_EQ(machine.pages.locks, 0u);
        }
    }
}

TEST(InterleaveAllocator, ARegionThatCannotBeReservedFailsTheBlock) {
    FakeMemoryMachine machine;
    machine.pages.normal_pages_left = false;
    EXPECT_EQ(heap_of(machine, {0}, true, 4096)->base, nullptr);
    EXPECT_EQ(heap_of(machine, {0}, true, ~std::uint64_t{0})->base, nullptr);
    EXPECT_EQ(machine.pages.reserves, (std::vector<std::uint64_t>{4096}));
}

TEST(InterleaveAllocator, FewerPagesThanNodesLeaveSomeWithoutWork) {
    FakeMemoryMachine machine;
    machine.set_nodes(4);
    const auto block = heap_of(machine, {0, 1, 2, 3}, false, 1);
    EXPECT_EQ(block->size, 4096u);
    EXPECT_EQ(block->spread->nodes, 1u);
}

TEST(InterleaveAllocator, LocksTheWholeBlock) {
    FakeMemoryMachine machine;
    EXPECT_EQ(heap_of(machine, {0}, true, 8192, PageMode::attempt)->locked, 1.0);
    EXPECT_EQ(machine.pages.locked_bytes, 8192u);
    machine.pages.placed.clear();
    machine.pages.lockable = false;
    const auto block = heap_of(machine, {0}, true, 8192, PageMode::attempt);
    EXPECT_NE(block->base, nullptr);
    EXPECT_EQ(block->locked, 0.0);
    EXPECT_EQ(machine.pages.live.size(), 1u);
    machine.pages.placed.clear();
    EXPECT_EQ(heap_of(machine, {0}, true, 8192, PageMode::forced)->base, nullptr);
    EXPECT_EQ(machine.pages.live.size(), 1u);
}

TEST(InterleaveAllocator, AsksForThePrivilegeOnlyToLock) {
    FakeMemoryMachine machine;
    machine.right.held = false;
    InterleaveAllocator allocator(machine.system());
    allocator.locked_pages = PageMode::disabled;
    EXPECT_EQ(printed_by([&] { EXPECT_TRUE(allocator.acquire_privileges()); }), "");
    EXPECT_EQ(machine.right.asked, 0);
    allocator.locked_pages = PageMode::attempt;
    EXPECT_NE(printed_by([&] {
                  EXPECT_FALSE(allocator.acquire_privileges());
              }).find("\".\nLarge pages and page locking may not be possible.\n"),
              std::string::npos);
}

TEST(InterleaveAllocator, StandsForEveryNodeAtFirst) {
    FakeMemoryMachine machine;
    machine.set_nodes(4);
    const InterleaveAllocator allocator(machine.system());
    EXPECT_EQ(allocator.nodes, (Nodes{0, 1, 2, 3}));
    EXPECT_TRUE(allocator.hashed);
    EXPECT_EQ(allocator.locked_pages, PageMode::attempt);
    EXPECT_STREQ(allocator.get_type_name(), "interleave");
    EXPECT_STREQ(allocator.get_display_name(), "Node Interleaving");
}

TEST(InterleaveAllocatorMenu, ShowsNodesMappingAndLocking) {
    FakeMemoryMachine machine;
    machine.set_nodes(3);
    InterleaveAllocator allocator(machine.system());
    std::uint64_t highest = 0;
    EXPECT_EQ(printed_by([&] { highest = allocator.print_menu_options(); }),
              "   3    NUMA nodes:             0, 1, 2\n"
              "   4    Page Mapping:           Hashed\n"
              "   5    Lock Pages in Memory:   Attempt\n");
    EXPECT_EQ(highest, 5u);
    allocator.handle_menu_option(4);
    allocator.handle_menu_option(5);
    EXPECT_FALSE(allocator.hashed);
    EXPECT_EQ(allocator.locked_pages, PageMode::forced);
    machine.set_nodes(1);
    EXPECT_EQ(printed_by([&] { allocator.print_menu_options(); }),
              "        (This allocator is useful only when there are multiple NUMA nodes.)\n\n"
              "   3    NUMA nodes:             0, 1, 2\n"
              "   4    Page Mapping:           Round-Robin\n"
              "   5    Lock Pages in Memory:   Forced\n");
}

TEST(InterleaveAllocatorMenu, NodesAreEnteredOneByOne) {
    FakeMemoryMachine machine;
    machine.set_nodes(2);
    InterleaveAllocator allocator(machine.system());
    {
        const kelvara_test::FedInput typed("1\n1x\n12 3\n\n");
        EXPECT_EQ(printed_by([&] { allocator.handle_menu_option(3); }),
                  "\n\nEnter NUMA node #'s one-by-one. Enter nothing to stop.\n\n"
                  "    - Duplicating nodes allow for imbalanced interleaving.\n"
                  "    - Non-existant nodes simply won't bind.\n\n"
                  "Node #Node #Node #Node #");
        EXPECT_EQ(allocator.nodes, (Nodes{1, 1, 12}));
    }
    for (const char* nothing : {"\n", "x\n", " 1\n", "-1\n"}) {
        allocator.nodes = {1};
        const kelvara_test::FedInput typed(nothing);
        printed_by([&] { allocator.handle_menu_option(3); });
        EXPECT_EQ(allocator.nodes, (Nodes{0, 1})) << nothing;
    }
}

TEST(InterleaveAllocatorSettings, ComeBackAsTheyWerePrinted) {
    FakeMemoryMachine machine;
    InterleaveAllocator allocator(machine.system());
    allocator.hashed = false;
    allocator.locked_pages = PageMode::forced;
    allocator.nodes = {1, 0, 1};
    const std::string text = allocator.print_settings();
    EXPECT_EQ(text,
              "    hashed        :\t0\r\n    locked        :\t2\r\n    nodes         :\t3\r\n"
              "        node      :\t1\r\n        node      :\t0\r\n        node      :\t1\r\n");
    InterleaveAllocator copy(machine.system());
    qmp::TextCursor cursor(text);
    copy.load_settings(cursor);
    EXPECT_EQ(copy.print_settings(), text);
}

TEST(InterleaveAllocatorSettings, BrokenRecordsChangeNothing) {
    FakeMemoryMachine machine;
    InterleaveAllocator allocator(machine.system());
    const std::string before = allocator.print_settings();
    qmp::TextCursor too_short("0 2 3 1 1");
    EXPECT_THROW(allocator.load_settings(too_short), qmp::ParseException);
    for (const char* without_nodes : {"0 2 0", "0 2 -1"}) {
        qmp::TextCursor cursor(without_nodes);
        EXPECT_THROW(allocator.load_settings(cursor), qmp::InvalidParametersException);
    }
    EXPECT_EQ(allocator.print_settings(), before);
}

TEST(InterleaveAllocatorConfig, ComesBackAsItWasWritten) {
    FakeMemoryMachine machine;
    InterleaveAllocator allocator(machine.system());
    allocator.hashed = false;
    allocator.locked_pages = PageMode::disabled;
    allocator.nodes = {3, 1};
    qmp::notation::Object object = allocator.write_config();
    ASSERT_EQ(object.members().size(), 3u);
    EXPECT_EQ(object.members()[0].key, "Hashed");
    EXPECT_EQ(object.members()[1].key, "LockedPages");
    EXPECT_EQ(object.members()[2].key, "Nodes");
    EXPECT_EQ(object.get_string("Hashed", ""), "false");
    EXPECT_EQ(object.get_string("LockedPages", ""), "disabled");
    object.insert_string("Allocator", "interleave");  // another reader's
    InterleaveAllocator copy(machine.system());
    copy.read_config(object);
    EXPECT_EQ(copy.print_settings(), allocator.print_settings());
}

template <typename Exception>
std::string refusal_of(const qmp::notation::Object& object) {
    FakeMemoryMachine machine;
    InterleaveAllocator allocator(machine.system());
    const std::string before = allocator.print_settings();
    std::string message = "nothing was thrown";
    try {
        allocator.read_config(object);
    } catch (const Exception& exception) {
        message = exception.message();
    }
    EXPECT_EQ(allocator.print_settings(), before);
    return message;
}

TEST(InterleaveAllocatorConfig, RefusesWhatIsWrong) {
    qmp::notation::Object object;
    EXPECT_EQ(refusal_of<qmp::ParseException>(object), "Key not found: Hashed");
    object.insert_bool("Hashed", false);
    object.insert_string("LockedPages", "forced");
    EXPECT_EQ(refusal_of<qmp::ParseException>(object), "Key not found: Nodes");
    object.insert("Nodes", std::make_unique<qmp::notation::Array>());
    EXPECT_EQ(refusal_of<qmp::InvalidParametersException>(object), "Node list cannot be empty.");

    qmp::notation::Object texts;
    texts.insert_bool("Hashed", false);
    texts.insert_string("LockedPages", "forced");
    auto list = std::make_unique<qmp::notation::Array>();
    list->append(0);
    list->append(std::make_unique<qmp::notation::String>("1"));
    texts.insert("Nodes", std::move(list));
    EXPECT_EQ(refusal_of<qmp::ParseException>(texts), "Memory Allocator: Expected Integer, got String.");

    qmp::notation::Object mode;
    mode.insert_bool("Hashed", false);
    mode.insert_string("LockedPages", "always");
    EXPECT_EQ(refusal_of<qmp::InvalidParametersException>(mode), "Invalid Mode: always");
}

TEST(DefaultAllocator, FollowsTheNumberOfNodes) {
    FakeMemoryMachine machine;
    for (const std::uint64_t one_at_most : {0, 1}) {
        machine.set_nodes(one_at_most);
        EXPECT_EQ(qmp::make_default_allocator(machine.system())->print_settings(),
                  "    largepages    :\t1\r\n    locked        :\t1\r\n");
    }
    machine.set_nodes(2);
    EXPECT_EQ(qmp::make_default_allocator(machine.system())->print_settings(),
              "    hashed        :\t1\r\n    locked        :\t1\r\n    nodes         :\t2\r\n"
              "        node      :\t0\r\n        node      :\t1\r\n");
}

}  // namespace
