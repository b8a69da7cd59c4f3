#include "platform/os/processor_mask.h"

#include <gtest/gtest.h>

#include <numeric>

namespace qmp::os {
namespace {

using Numbers = std::vector<std::uint32_t>;

TEST(ProcessorMask, HoldsWhatWasInserted) {
    ProcessorMask mask;
    EXPECT_TRUE(mask.empty());
    EXPECT_EQ(mask.processors(), Numbers{});
    for (const std::uint32_t processor : {1023u, 0u, 63u, 64u, 127u, 63u}) mask.insert(processor);
    EXPECT_FALSE(mask.empty());
    EXPECT_EQ(mask.count(), 5u);
    EXPECT_EQ(mask.processors(), (Numbers{0, 63, 64, 127, 1023}));
    EXPECT_TRUE(mask.contains(64));
    EXPECT_FALSE(mask.contains(65));
    EXPECT_FALSE(mask.contains(100'000));
}

TEST(ProcessorMask, TakesTheFirstOfAGroup) {
    for (const std::uint32_t count : {0u, 1u, 16u, 63u, 64u, 65u, 128u, 200u, 1024u}) {
        Numbers all(count);
        std::iota(all.begin(), all.end(), 0u);
        EXPECT_EQ(ProcessorMask::first(count).processors(), all) << count;
        EXPECT_EQ(ProcessorMask::first(count).count(), count);
    }
    EXPECT_EQ(ProcessorMask::first(64).word(), ~std::uint64_t{0});
    EXPECT_EQ(ProcessorMask::first(36).word(), (std::uint64_t{1} << 36) - 1);
}

TEST(ProcessorMask, EqualSetsAreEqual) {
    ProcessorMask inserted;
    inserted.insert(1);
    inserted.insert(3);
    EXPECT_EQ(inserted, ProcessorMask(10));
    EXPECT_EQ(ProcessorMask(0), ProcessorMask());
    EXPECT_EQ(ProcessorMask::first(0), ProcessorMask());
    EXPECT_NE(ProcessorMask::of(64), ProcessorMask::of(0));
    EXPECT_LT(ProcessorMask::of(63), ProcessorMask(~std::uint64_t{0}));
}

TEST(ProcessorMask, ShowsItselfAsANumber) {
    EXPECT_EQ(ProcessorMask().text(), "0");
    EXPECT_EQ(ProcessorMask(65535).text(), "65535");
    EXPECT_EQ(ProcessorMask::first(64).text(), "18446744073709551615");
    EXPECT_EQ(ProcessorMask::of(64).text(), "0x10000000000000000");
    EXPECT_EQ(ProcessorMask::first(200).text(), "0xff" + std::string(48, 'f'));
    EXPECT_FALSE(ProcessorMask::of(64).word().has_value());
    EXPECT_EQ(ProcessorMask().word(), 0u);
}

}  // namespace
}  // namespace qmp::os
