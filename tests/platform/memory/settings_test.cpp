// The memory allocators in a configuration and in a settings record.
#include "platform/memory/settings.h"

#include <gtest/gtest.h>

#include "errors/exception.h"
#include "platform/memory/interleave_allocator.h"
#include "platform/memory/mmap_allocator.h"
#include "support/messages.h"

namespace {

using kelvara_test::message_of;
using qmp::notation::Object;

TEST(AllocatorSettings, AreWrittenWithTheAllocatorsNameFirst) {
    EXPECT_EQ(qmp::write_allocator_settings(*qmp::make_allocator("malloc")).to_text(0),
              "{\r\n    Allocator : \"malloc\"\r\n}\r\n");
    qmp::MmapAllocator mmap;
    mmap.locked_pages = qmp::PageMode::forced;
    EXPECT_EQ(qmp::write_allocator_settings(mmap).to_text(0),
              "{\r\n    Allocator : \"mmap\"\r\n    LargePages : \"attempt\"\r\n"
              "    LockedPages : \"forced\"\r\n}\r\n");
    qmp::InterleaveAllocator interleave;
    interleave.nodes = {2};
    const Object written = qmp::write_allocator_settings(interleave);
    ASSERT_EQ(written.members().size(), 4u);
    EXPECT_EQ(written.members()[0].key, "Allocator");
    EXPECT_EQ(written.members()[1].key, "Hashed");
    EXPECT_EQ(written.members()[2].key, "LockedPages");
    EXPECT_EQ(written.members()[3].key, "Nodes");
}

TEST(AllocatorSettings, ComeBackAsTheyWereWritten) {
    qmp::InterleaveAllocator interleave;
    interleave.hashed = false;
    interleave.locked_pages = qmp::PageMode::disabled;
    interleave.nodes = {0, 0, UINT64_MAX};
    qmp::MmapAllocator mmap;
    mmap.large_pages = qmp::PageMode::disabled;
    for (const qmp::BasicAllocator* allocator : {static_cast<const qmp::BasicAllocator*>(&interleave),
                                                 static_cast<const qmp::BasicAllocator*>(&mmap)}) {
        const Object written = qmp::write_allocator_settings(*allocator);
        const auto copy = qmp::read_allocator_settings(written);
        EXPECT_STREQ(copy->get_type_name(), allocator->get_type_name());
        EXPECT_EQ(copy->print_settings(), allocator->print_settings());
        EXPECT_EQ(qmp::write_allocator_settings(*copy).to_text(0), written.to_text(0));
    }
}

TEST(AllocatorSettings, RefuseAnUnknownName) {
    Object object;
    EXPECT_EQ(message_of<qmp::ParseException>([&] { qmp::read_allocator_settings(object); }),
              "Key not found: Allocator");
    object.insert_string("Allocator", "Malloc");
    EXPECT_EQ(message_of<qmp::InvalidParametersException>([&] { qmp::read_allocator_settings(object); }),
              "Invalid Memory Allocator: Malloc");
    Object number;
    number.insert_integer("Allocator", 1);
    EXPECT_EQ(message_of<qmp::ParseException>([&] { qmp::read_allocator_settings(number); }),
              "Memory Allocator: Expected String, got Integer.");
}

TEST(AllocatorSettings, ReportTheAllocatorsOwnKeys) {
    Object object;
    object.insert_string("Allocator", "interleave");
    EXPECT_EQ(message_of<qmp::ParseException>([&] { qmp::read_allocator_settings(object); }),
              "Key not found: Hashed");
    object.insert_bool("Hashed", true);
    EXPECT_EQ(message_of<qmp::ParseException>([&] { qmp::read_allocator_settings(object); }),
              "Key not found: LockedPages");
    object.insert_string("LockedPages", "attempt");
    EXPECT_EQ(message_of<qmp::ParseException>([&] { qmp::read_allocator_settings(object); }),
              "Key not found: Nodes");
    object.insert("Nodes", std::make_unique<qmp::notation::Array>());
    EXPECT_EQ(message_of<qmp::InvalidParametersException>([&] { qmp::read_allocator_settings(object); }),
              "Node list cannot be empty.");
}

std::unique_ptr<qmp::BasicAllocator> load(const std::string& record) {
    qmp::TextCursor cursor(record);
    auto allocator = qmp::load_allocator_settings(cursor);
    EXPECT_EQ(cursor.rest(), "");
    return allocator;
}

TEST(AllocatorRecord, BeginsWithTheAllocatorsName) {
    EXPECT_EQ(qmp::print_allocator_settings(*qmp::make_allocator("malloc")),
              "allocator         :\tmalloc\r\n");
    qmp::MmapAllocator mmap;
    mmap.locked_pages = qmp::PageMode::forced;
    EXPECT_EQ(qmp::print_allocator_settings(mmap),
              "allocator         :\tmmap\r\n    largepages    :\t1\r\n    locked        :\t2\r\n");
}

TEST(AllocatorRecord, ComesBackAsItWasWritten) {
    qmp::InterleaveAllocator interleave;
    interleave.hashed = false;
    interleave.locked_pages = qmp::PageMode::forced;
    interleave.nodes = {0, 7, UINT64_MAX};
    qmp::MmapAllocator mmap;
    mmap.large_pages = qmp::PageMode::disabled;
    const auto runtime_heap = qmp::make_allocator("malloc");
    const qmp::BasicAllocator* allocators[] = {&interleave, &mmap, runtime_heap.get()};
    for (const qmp::BasicAllocator* allocator : allocators) {
        const std::string record = qmp::print_allocator_settings(*allocator);
        const auto copy = load(record);
        EXPECT_STREQ(copy->get_type_name(), allocator->get_type_name());
        EXPECT_EQ(qmp::print_allocator_settings(*copy), record);
    }
}

TEST(AllocatorRecord, RefusesWhatIsWrong) {
    EXPECT_EQ(message_of<qmp::InvalidParametersException>([] { load("a:\theap\r\n"); }),
              "Invalid Memory Allocator: heap");
    for (const char* record : {"", "a:\tmmap\r\n", "a:\tmmap\r\nl:\t1\r\nl:\t1x\r\n", "mmap\r\n"}) {
        EXPECT_EQ(message_of<qmp::ParseException>([&] { load(record); }), "Unexpected end of string.")
            << record;
    }
    EXPECT_EQ(message_of<qmp::InvalidParametersException>(
                  [] { load("a:\tinterleave\r\nh:\t1\r\nl:\t0\r\nn:\t0\r\n"); }),
              "Node list cannot be empty.");
}

}  // namespace
