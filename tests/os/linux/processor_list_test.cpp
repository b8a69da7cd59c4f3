#include "platform/os/linux/processor_list.h"

#include <gtest/gtest.h>

namespace qmp::os {
namespace {

using Numbers = std::vector<std::uint32_t>;

TEST(ProcessorList, ReadsNumbersAndRanges) {
    EXPECT_EQ(parse_processor_list("0-3,8,10-11"), (Numbers{0, 1, 2, 3, 8, 10, 11}));
    EXPECT_EQ(parse_processor_list("0\n"), Numbers{0});
    EXPECT_EQ(parse_processor_list("5-5"), Numbers{5});
    EXPECT_EQ(parse_processor_list("1023"), Numbers{1023});
}

TEST(ProcessorList, CanBeEmpty) {
    EXPECT_EQ(parse_processor_list(""), Numbers{});
    EXPECT_EQ(parse_processor_list("\n"), Numbers{});
}

TEST(ProcessorList, SortsAndSkipsSpace) {
    EXPECT_EQ(parse_processor_list(" 8, 1-3 ,2 \n"), (Numbers{1, 2, 3, 8}));
}

TEST(ProcessorList, RefusesWhatIsNoList) {
    for (const char* text : {"a", "1,,2", ",", "1,", ",1", "3-1", "-3", "3-", "1-2-3", "0x3", "1 2",
                             "99999999999", "0-4294967295", "1048576"}) {
        EXPECT_EQ(parse_processor_list(text), std::nullopt) << text;
    }
}

}  // namespace
}  // namespace qmp::os
