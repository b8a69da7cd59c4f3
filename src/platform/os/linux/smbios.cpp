#include "platform/os/linux/smbios.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

namespace qmp::os {
namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint8_t memory_device = 17;
constexpr std::uint8_t end_of_table = 127;
constexpr std::size_t header_size = 4;  // type, length of the formatted part, handle

// One structure: its formatted part, and the strings behind it, which fields name by numbers from 1.
struct Structure {
    Bytes formatted;
    std::vector<std::string_view> strings;

    std::uint8_t type() const { return formatted[0]; }

    // Older tables have shorter structures: what is not there is 0.
    std::uint32_t field(std::size_t offset, std::size_t bytes) const {
        std::uint32_t value = 0;
        if (offset + bytes > formatted.size()) return 0;
        for (std::size_t i = 0; i < bytes; ++i) value |= std::uint32_t{formatted[offset + i]} << (8 * i);
        return value;
    }

    std::string text(std::size_t offset) const {
        const std::uint32_t number = field(offset, 1);
        if (number == 0 || number > strings.size()) return {};
        const std::string_view text = strings[number - 1];
        const std::size_t begin = text.find_first_not_of(' ');
        if (begin == std::string_view::npos) return {};
        return std::string(text.substr(begin, text.find_last_not_of(' ') - begin + 1));
    }
};

// Takes the structure at the front of the table off it; nothing when there is no whole one.
std::optional<Structure> take_structure(Bytes& table) {
    if (table.size() < header_size) return std::nullopt;
    const std::size_t length = table[1];
    if (length < header_size || length > table.size()) return std::nullopt;
    Structure structure{table.first(length), {}};
    Bytes rest = table.subspan(length);
    // Each string ends with a zero, and so does their list, which is two zeros when it is empty.
    if (rest.size() >= 2 && rest[0] == 0 && rest[1] == 0) {
        table = rest.subspan(2);
        return structure;
    }
    while (true) {
        const auto end = std::find(rest.begin(), rest.end(), 0);
        if (end == rest.end()) return std::nullopt;
        const auto size = static_cast<std::size_t>(end - rest.begin());
        if (size > 0) structure.strings.emplace_back(reinterpret_cast<const char*>(rest.data()), size);
        rest = rest.subspan(size + 1);
        if (size == 0) break;
    }
    table = rest;
    return structure;
}

// The size with its unit; nothing for an empty slot, an empty text for an unknown size.
std::optional<std::string> capacity_of(const Structure& device) {
    constexpr std::uint32_t unknown = 0xffff;
    constexpr std::uint32_t in_the_extended_field = 0x7fff;
    constexpr std::uint32_t in_kibibytes = 0x8000;
    const std::uint32_t size = device.field(0x0c, 2);
    if (size == 0) return std::nullopt;
    if (size == unknown) return "";
    if (size == in_the_extended_field) {
        const std::uint32_t mebibytes = device.field(0x1c, 4) & 0x7fffffff;
        return mebibytes == 0 ? "" : std::to_string(mebibytes) + "M";
    }
    return std::to_string(size & ~in_kibibytes) + ((size & in_kibibytes) != 0 ? "K" : "M");
}

}  // namespace

std::vector<MemoryModule> memory_modules_in_smbios(std::span<const std::uint8_t> table) {
    std::vector<MemoryModule> modules;
    while (const std::optional<Structure> structure = take_structure(table)) {
        if (structure->type() == end_of_table) break;
        if (structure->type() != memory_device) continue;
        const std::optional<std::string> capacity = capacity_of(*structure);
        if (capacity) modules.push_back({structure->text(0x17), structure->text(0x1a), *capacity});
    }
    return modules;
}

}  // namespace qmp::os
