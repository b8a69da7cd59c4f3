#include "platform/memory/region_allocator.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <vector>

#include "support/fatal.h"
#include "support/random_words.h"

namespace {

using qmp::RegionAllocator;

class Region {
  public:
    explicit Region(std::uint64_t bytes) : words_(bytes / 8, kelvara_test::garbage) {}
    void* data() { return words_.data(); }
    std::uint64_t bytes() const { return words_.size() * 8; }
    std::uint64_t offset(void* p) const {
        return static_cast<std::uint64_t>(static_cast<char*>(p) -
                                          reinterpret_cast<const char*>(words_.data()));
    }

  private:
    std::vector<std::uint64_t> words_;
};

TEST(RegionAllocator, StoresItsAddressInTheFirstWord) {
    Region region(1024);
    RegionAllocator allocator(region.data(), region.bytes());
    void* block = allocator.allocate(64);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(*static_cast<RegionAllocator**>(block), &allocator);
}

TEST(RegionAllocator, AppendsAndTakesTheFirstGapThatFits) {
    Region region(1024);
    RegionAllocator allocator(region.data(), region.bytes());
    void* a = allocator.allocate(64);
    void* b = allocator.allocate(128);
    void* c = allocator.allocate(32);
    EXPECT_EQ(region.offset(a), 0u);
    EXPECT_EQ(region.offset(b), 64u);
    EXPECT_EQ(region.offset(c), 192u);

    allocator.release(b);
    EXPECT_EQ(allocator.count(), 2u);
    EXPECT_EQ(allocator.used_bytes(), 224u);
    void* too_large_for_the_gap = allocator.allocate(136);
    EXPECT_EQ(region.offset(too_large_for_the_gap), 224u);
    void* d = allocator.allocate(120);
    EXPECT_EQ(region.offset(d), 64u);
    void* e = allocator.allocate(8);
    EXPECT_EQ(region.offset(e), 184u);
}

TEST(RegionAllocator, AGapAtTheStartIsFoundToo) {
    Region region(1024);
    RegionAllocator allocator(region.data(), region.bytes());
    void* a = allocator.allocate(64);
    allocator.allocate(64);
    allocator.release(a);
    EXPECT_EQ(region.offset(allocator.allocate(64)), 0u);
}

TEST(RegionAllocator, TopFollowsTheLastBlockAndPeaksStay) {
    Region region(1024);
    RegionAllocator allocator(region.data(), region.bytes());
    void* a = allocator.allocate(64);
    void* b = allocator.allocate(64);
    void* c = allocator.allocate(64);
    EXPECT_EQ(allocator.peak_bytes(), 192u);
    EXPECT_EQ(allocator.peak_count(), 3u);
    allocator.release(c);
    EXPECT_EQ(allocator.used_bytes(), 128u);
    allocator.release(a);
    EXPECT_EQ(allocator.used_bytes(), 128u);
    allocator.release(b);
    EXPECT_EQ(allocator.used_bytes(), 0u);
    EXPECT_EQ(allocator.count(), 0u);
    EXPECT_EQ(allocator.peak_bytes(), 192u);
    EXPECT_EQ(allocator.peak_count(), 3u);
}

TEST(RegionAllocator, ThePeakCanBeginAnew) {
    Region region(1024);
    RegionAllocator allocator(region.data(), region.bytes());
    void* a = allocator.allocate(64);
    allocator.release(allocator.allocate(128));
    EXPECT_EQ(allocator.peak_bytes(), 192u);
    allocator.restart_peak();
    EXPECT_EQ(allocator.peak_bytes(), 64u);
    allocator.release(allocator.allocate(32));
    EXPECT_EQ(allocator.peak_bytes(), 96u);
    allocator.release(a);
    allocator.restart_peak();
    EXPECT_EQ(allocator.peak_bytes(), 0u);
}

TEST(RegionAllocator, EveryBlockNeedsRoomForItsRecord) {
    Region region(256);
    {
        RegionAllocator allocator(region.data(), region.bytes());
        EXPECT_EQ(allocator.allocate(248), nullptr);  // leaves 8 bytes, a record takes 16
        EXPECT_EQ(allocator.allocate(256), nullptr);
        EXPECT_NE(allocator.allocate(240), nullptr);
        EXPECT_EQ(allocator.allocate(8), nullptr);
        EXPECT_EQ(allocator.count(), 1u);
    }
    {
        // A gap is of no use without 16 bytes for the record between the top and the table.
        RegionAllocator allocator(region.data(), region.bytes());
        void* a = allocator.allocate(64);
        ASSERT_NE(allocator.allocate(144), nullptr);  // top 208, table from 224
        allocator.release(a);                         // table from 240
        void* b = allocator.allocate(8);              // table from 224, top 208
        EXPECT_EQ(region.offset(b), 0u);
        void* c = allocator.allocate(8);  // table from 208: full
        EXPECT_EQ(region.offset(c), 8u);
        EXPECT_EQ(allocator.allocate(8), nullptr);
    }
}

TEST(RegionAllocator, RefusesSizesThatWouldOverflow) {
    Region region(256);
    RegionAllocator allocator(region.data(), region.bytes());
    EXPECT_EQ(allocator.allocate(~std::uint64_t{0}), nullptr);
    EXPECT_EQ(allocator.allocate(~std::uint64_t{0} - 15), nullptr);
}

// Against a model: blocks keep their content, never overlap, and stay inside the region.
TEST(RegionAllocator, RandomUseKeepsEveryBlockIntact) {
    for (std::uint64_t round = 0; round < 20 * kelvara_test::multiplier(); ++round) {
        kelvara_test::Random random(round);
        Region region(4096);
        RegionAllocator allocator(region.data(), region.bytes());
        std::map<char*, std::pair<std::uint64_t, unsigned char>> live;
        for (int step = 0; step < 500; ++step) {
            if (random.between(0, 99) < 55) {
                const std::uint64_t bytes = 8 * random.between(1, 40);
                char* block = static_cast<char*>(allocator.allocate(bytes));
                if (!block) continue;
                const auto mark = static_cast<unsigned char>(random.next());
                std::memset(block, mark, bytes);
                const auto next = live.lower_bound(block);
                if (next != live.end()) {
                    ASSERT_LE(block + bytes, next->first);
                }
                if (next != live.begin()) {
                    const auto before = std::prev(next);
                    ASSERT_LE(before->first + before->second.first, block);
                }
                ASSERT_LE(region.offset(block) + bytes + 16 * (live.size() + 1), region.bytes());
                live[block] = {bytes, mark};
            } else if (!live.empty()) {
                auto victim = live.begin();
                std::advance(victim, static_cast<std::ptrdiff_t>(random.between(0, live.size() - 1)));
                for (std::uint64_t i = 0; i < victim->second.first; ++i) {
                    ASSERT_EQ(static_cast<unsigned char>(victim->first[i]), victim->second.second);
                }
                allocator.release(victim->first);
                live.erase(victim);
            }
            ASSERT_EQ(allocator.count(), live.size());
            const std::uint64_t top =
                live.empty() ? 0 : region.offset(live.rbegin()->first) + live.rbegin()->second.first;
            ASSERT_EQ(allocator.used_bytes(), top);
        }
    }
}

#if GTEST_HAS_DEATH_TEST
TEST(RegionAllocatorDeathTest, RefusesToReleaseWhatItDoesNotHold) {
    Region region(1024);
    RegionAllocator allocator(region.data(), region.bytes());
    char* block = static_cast<char*>(allocator.allocate(64));
    EXPECT_CRASH(allocator.release(block + 8), "Invalid Function Parameters: RegionAllocator::release\\(\\)");
    allocator.release(block);
    EXPECT_CRASH(allocator.release(block), "Invalid Function Parameters: RegionAllocator::release\\(\\)");
}
#endif

}  // namespace
