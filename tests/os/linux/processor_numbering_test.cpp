#include "platform/os/linux/processor_numbering.h"

#include <gtest/gtest.h>

namespace qmp::os {
namespace {

using Numbers = std::vector<std::uint32_t>;

TEST(ProcessorNumbering, ClosesTheGapsOfTheSystem) {
    const ProcessorNumbering numbering({1, 5, 130, 900});
    EXPECT_EQ(numbering.size(), 4u);
    EXPECT_EQ(numbering.processors_of(ProcessorMask(0b1111)), (Numbers{1, 5, 130, 900}));
    EXPECT_EQ(numbering.processors_of(ProcessorMask(0b1010)), (Numbers{5, 900}));
    EXPECT_EQ(numbering.mask_of(Numbers{130, 1}), ProcessorMask(0b101));
}

TEST(ProcessorNumbering, LeavesOutWhatBelongsToOthers) {
    const ProcessorNumbering numbering({1, 5});
    EXPECT_EQ(numbering.mask_of(Numbers{0, 1, 2, 3, 4, 6, 4000}), ProcessorMask(1));
    EXPECT_EQ(numbering.mask_of(Numbers{0}), ProcessorMask());
    EXPECT_EQ(numbering.mask_of(Numbers{}), ProcessorMask());
}

TEST(ProcessorNumbering, RefusesNumbersBeyondTheLast) {
    const ProcessorNumbering numbering({1, 5});
    EXPECT_EQ(numbering.processors_of(ProcessorMask(0b100)), std::nullopt);
    EXPECT_EQ(numbering.processors_of(ProcessorMask(0b101)), std::nullopt);
    EXPECT_EQ(numbering.processors_of(ProcessorMask()), Numbers{});
}

TEST(ProcessorNumbering, ReachesBeyond64) {
    Numbers odd;
    for (std::uint32_t i = 1; i < 2048; i += 2) odd.push_back(i);
    const ProcessorNumbering numbering(odd);
    EXPECT_EQ(numbering.mask_of(odd), ProcessorMask::first(1024));
    EXPECT_EQ(numbering.processors_of(ProcessorMask::first(1024)), odd);
    EXPECT_EQ(numbering.processors_of(ProcessorMask::of(1023)), Numbers{2047});
}

}  // namespace
}  // namespace qmp::os
