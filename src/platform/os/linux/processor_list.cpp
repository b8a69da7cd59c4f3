#include "platform/os/linux/processor_list.h"

#include <algorithm>
#include <charconv>

namespace qmp::os {
namespace {

constexpr std::uint32_t beyond_any_kernel = 1 << 20;

std::string_view without_space(std::string_view text) {
    constexpr std::string_view space = " \t\r\n";
    const std::size_t first = text.find_first_not_of(space);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(space) - first + 1);
}

std::optional<std::uint32_t> parse_number(std::string_view text) {
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || value >= beyond_any_kernel)
        return std::nullopt;
    return value;
}

// False when the entry is neither "number" nor "first-last".
bool append_entry(std::string_view entry, std::vector<std::uint32_t>& list) {
    const std::size_t dash = std::min(entry.find('-'), entry.size());
    const auto first = parse_number(entry.substr(0, dash));
    const auto last = dash == entry.size() ? first : parse_number(entry.substr(dash + 1));
    if (!first || !last || *last < *first) return false;
    for (std::uint32_t number = *first; number <= *last; ++number) list.push_back(number);
    return true;
}

}  // namespace

std::optional<std::vector<std::uint32_t>> parse_processor_list(std::string_view text) {
    std::vector<std::uint32_t> list;
    text = without_space(text);
    while (!text.empty()) {
        const std::size_t comma = std::min(text.find(','), text.size());
        if (!append_entry(without_space(text.substr(0, comma)), list)) return std::nullopt;
        if (comma + 1 == text.size()) return std::nullopt;  // nothing behind the comma
        text.remove_prefix(std::min(comma + 1, text.size()));
    }
    std::sort(list.begin(), list.end());
    list.erase(std::unique(list.begin(), list.end()), list.end());
    return list;
}

}  // namespace qmp::os
