// Tables of firmware, whole and damaged.
#include "platform/os/linux/smbios.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

namespace qmp::os {
namespace {

using Table = std::vector<std::uint8_t>;

constexpr std::uint8_t whole_device = 0x54;  // the length since version 3.2

// A structure of zeros with its strings.
Table structure(std::uint8_t type, std::uint8_t length, const std::vector<std::string>& strings) {
    Table bytes(length, 0);
    bytes[0] = type;
    bytes[1] = length;
    for (const std::string& text : strings) {
        bytes.insert(bytes.end(), text.begin(), text.end());
        bytes.push_back(0);
    }
    if (strings.empty()) bytes.push_back(0);
    bytes.push_back(0);
    return bytes;
}

// A memory device: the strings are its slot, maker, serial number and part number.
Table device(std::uint16_t size, const std::string& manufacturer, const std::string& part_number,
             std::uint32_t extended_size = 0, std::uint8_t length = whole_device) {
    Table bytes = structure(17, length, {"DIMM_A1", manufacturer, "SECRET-SERIAL", part_number});
    const auto put = [&](std::size_t offset, std::uint32_t value, std::size_t count) {
        if (offset + count > length) return;
        for (std::size_t i = 0; i < count; ++i)
            bytes[offset + i] = static_cast<std::uint8_t>(value >> (8 * i));
    };
    put(0x0c, size, 2);
    put(0x10, 1, 1);
    put(0x17, 2, 1);
    put(0x18, 3, 1);
    put(0x1a, 4, 1);
    put(0x1c, extended_size, 4);
    return bytes;
}

Table operator+(Table left, const Table& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

std::string text_of(const std::vector<MemoryModule>& modules) {
    std::string text;
    for (const MemoryModule& module : modules) {
        text += "[" + module.manufacturer + "|" + module.part_number + "|" + module.capacity + "]";
    }
    return text;
}

std::string modules_in(const Table& table) {
    return text_of(memory_modules_in_smbios(table));
}

const Table end_of_table = structure(127, 4, {});

TEST(Smbios, ListsTheModulesAndNothingElse) {
    const Table table = structure(0, 24, {"Vendor", "1.0"}) + device(16384, "Maker", "Part-1") +
                        structure(16, 23, {}) + device(0, "NO DIMM", "NO DIMM") +
                        device(8192, " Other ", "Part-2  ") + end_of_table + device(1, "after", "the end");
    EXPECT_EQ(modules_in(table), "[Maker|Part-1|16384M][Other|Part-2|8192M]");
}

TEST(Smbios, SizesHaveFourForms) {
    EXPECT_EQ(modules_in(device(0x8200, "a", "b")), "[a|b|512K]");
    EXPECT_EQ(modules_in(device(0x7ffe, "a", "b")), "[a|b|32766M]");
    EXPECT_EQ(modules_in(device(0x7fff, "a", "b", 65536)), "[a|b|65536M]");
    EXPECT_EQ(modules_in(device(0x7fff, "a", "b", 0x80000000 | 131072)), "[a|b|131072M]");
    EXPECT_EQ(modules_in(device(0xffff, "a", "b")), "[a|b|]");
}

// A structure of an older version of the table ends before the fields that came later.
TEST(Smbios, ShortStructuresLackFields) {
    EXPECT_EQ(modules_in(device(0x7fff, "a", "b", 65536, 0x1b)), "[a|b|]");
    EXPECT_EQ(modules_in(device(4096, "a", "b", 0, 0x1a)), "[a||4096M]");
    EXPECT_EQ(modules_in(device(4096, "a", "b", 0, 0x15)), "[||4096M]");
    EXPECT_EQ(modules_in(device(4096, "a", "b", 0, 0x0d)), "");
}

TEST(Smbios, StringNumbersThatNameNoStringAreEmpty) {
    Table table = device(4096, "a", "b");
    table[0x17] = 0;
    table[0x1a] = 5;
    EXPECT_EQ(modules_in(table), "[||4096M]");
    Table without_strings = structure(17, whole_device, {});
    without_strings[0x0d] = 0x10;
    without_strings[0x17] = 1;
    EXPECT_EQ(modules_in(without_strings + device(1, "next", "one")), "[||4096M][next|one|1M]");
}

// A blank string has its number all the same.
TEST(Smbios, BlankStringsCount) {
    EXPECT_EQ(modules_in(device(4096, "  ", "b")), "[|b|4096M]");
}

TEST(Smbios, SerialNumbersAreNotRead) {
    EXPECT_EQ(modules_in(device(4096, "a", "b")).find("SECRET"), std::string::npos);
}

// Cut anywhere, a table yields the structures that are whole, and nothing behind its end is touched.
TEST(Smbios, TruncatedTablesYieldWhatIsWhole) {
    const Table first = device(16384, "Maker", "Part-1");
    const Table table = first + device(8192, "Other", "Part-2");
    for (std::size_t size = 0; size <= table.size(); ++size) {
        const Table cut(table.begin(), table.begin() + static_cast<std::ptrdiff_t>(size));
        std::string expected;
        if (size >= first.size()) expected += "[Maker|Part-1|16384M]";
        if (size >= table.size()) expected += "[Other|Part-2|8192M]";
        EXPECT_EQ(modules_in(cut), expected) << size;
    }
}

TEST(Smbios, LengthsThatCannotBeEndTheReading) {
    for (const std::uint8_t length : {0, 1, 3}) {
        Table table = device(4096, "a", "b");
        table[1] = length;
        EXPECT_EQ(modules_in(table), "") << int{length};
    }
    Table long_one = structure(17, 8, {});
    long_one[1] = 255;
    EXPECT_EQ(modules_in(device(4096, "a", "b") + long_one), "[a|b|4096M]");
}

}  // namespace
}  // namespace qmp::os
