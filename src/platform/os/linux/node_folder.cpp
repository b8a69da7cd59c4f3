#include "platform/os/linux/node_folder.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string_view>
#include <system_error>

#include "platform/os/linux/errno_codes.h"
#include "platform/os/linux/processor_list.h"

namespace qmp::os {
namespace {

// The number of a name "nodeN".
std::optional<std::uint32_t> node_number(std::string_view name) {
    constexpr std::string_view prefix = "node";
    if (!name.starts_with(prefix)) return std::nullopt;
    name.remove_prefix(prefix.size());
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    if (error != std::errc{} || end != name.data() + name.size()) return std::nullopt;
    return number;
}

}  // namespace

ErrorCode NodeFolder::highest_node(std::uint32_t& node) const {
    node = 0;
    std::error_code error;
    std::filesystem::directory_iterator entry(path_, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        node = std::max(node, node_number(entry->path().filename().string()).value_or(0));
    }
    return !error || error.value() == ENOENT ? no_error : code_of_errno(error.value());
}

ErrorCode NodeFolder::processors(std::uint32_t node, std::vector<std::uint32_t>& list) const {
    list.clear();
    const std::string folder = path_ + "/node" + std::to_string(node);
    std::error_code error;
    if (!std::filesystem::exists(folder, error)) {
        if (error) return code_of_errno(error.value());
        std::uint32_t highest = 0;
        if (const ErrorCode unread = highest_node(highest); unread != no_error) return unread;
        return node == 0 && highest == 0 ? call_not_implemented : no_error;
    }
    errno = 0;
    std::ifstream file(folder + "/cpulist");
    if (!file) return code_of_errno(errno != 0 ? errno : EIO);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    auto processors = parse_processor_list(text);
    if (!processors) return invalid_data;
    list = std::move(*processors);
    return no_error;
}

}  // namespace qmp::os
