#include "platform/os/linux/hardware_facts.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <tuple>

#include "platform/os/linux/smbios.h"

namespace qmp::os {
namespace {

std::string trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(" \t\r\n");
    if (begin == std::string_view::npos) return {};
    return std::string(text.substr(begin, text.find_last_not_of(" \t\r\n") - begin + 1));
}

// The first line of a file; nothing when it cannot be read.
std::optional<std::string> line_of(const std::string& path) {
    std::ifstream file(path);
    std::string line;
    if (!std::getline(file, line)) return std::nullopt;
    return trimmed(line);
}

// The number that the text begins with. `form` is a base, or a form of floating-point numbers.
template <typename Number, typename... Form>
std::optional<Number> number_of(std::string_view text, Form... form) {
    Number number;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, form...);
    if (error != std::errc()) return std::nullopt;
    return number;
}

template <typename Number>
std::optional<Number> number_in(const std::string& path, int base = 10) {
    const std::optional<std::string> line = line_of(path);
    return line ? number_of<Number>(*line, base) : std::nullopt;
}

// The entries of a folder that are called `name` and a number, by their numbers.
std::map<std::uint32_t, std::string> numbered_entries(const std::string& folder, std::string_view name) {
    std::map<std::uint32_t, std::string> entries;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string found = entry->path().filename().string();
        if (!found.starts_with(name)) continue;
        const std::string digits = found.substr(name.size());
        if (digits.empty() || digits.find_first_not_of("0123456789") != std::string::npos) continue;
        if (const auto number = number_of<std::uint32_t>(digits)) entries[*number] = entry->path().string();
    }
    return entries;
}

// A value of os-release: plain, or quoted with the escapes of a shell.
std::string unquoted(std::string_view value) {
    if (value.empty() || (value.front() != '"' && value.front() != '\'')) return std::string(value);
    const char quote = value.front();
    std::string text;
    for (std::size_t i = 1; i < value.size() && value[i] != quote; ++i) {
        if (quote == '"' && value[i] == '\\' && i + 1 < value.size()) ++i;
        text += value[i];
    }
    return text;
}

std::string distribution_of(const std::string& root) {
    constexpr std::string_view wanted = "PRETTY_NAME=";
    // The second is what the first links to, unless the administrator has replaced it.
    for (const char* path : {"/etc/os-release", "/usr/lib/os-release"}) {
        std::ifstream file(root + path);
        for (std::string line; std::getline(file, line);) {
            if (line.starts_with(wanted)) return unquoted(trimmed(line.substr(wanted.size())));
        }
    }
    return {};
}

// The value of the first line "name : value" of /proc/cpuinfo.
std::string cpuinfo_value(const std::string& root, std::string_view name) {
    std::ifstream file(root + "/proc/cpuinfo");
    for (std::string line; std::getline(file, line);) {
        const std::size_t colon = line.find(':');
        if (colon == std::string::npos || trimmed(line.substr(0, colon)) != name) continue;
        return trimmed(line.substr(colon + 1));
    }
    return {};
}

// A guest of a hypervisor whose frequency is nobody's to scale is told the rate of the time-stamp counter
// here, which is the base frequency. On other machines this is the frequency of the moment.
std::uint64_t guest_frequency(const std::string& root) {
    if ((" " + cpuinfo_value(root, "flags") + " ").find(" hypervisor ") == std::string::npos) return 0;
    const auto megahertz = number_of<double>(cpuinfo_value(root, "cpu MHz"), std::chars_format::fixed);
    if (!megahertz || !(*megahertz > 0.0 && *megahertz < 1e6)) return 0;
    return static_cast<std::uint64_t>(std::llround(*megahertz * 1e6));
}

std::vector<std::uint8_t> bytes_of(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// The controllers that correct memory errors know the sizes of their modules, in MiB, and no makers.
std::vector<MemoryModule> modules_of_controllers(const std::string& root) {
    std::vector<MemoryModule> modules;
    for (const auto& [number, controller] : numbered_entries(root + "/sys/devices/system/edac/mc", "mc")) {
        for (const auto& [slot, folder] : numbered_entries(controller, "dimm")) {
            const auto mebibytes = number_in<std::uint64_t>(folder + "/size");
            if (mebibytes && *mebibytes > 0) modules.push_back({"", "", std::to_string(*mebibytes) + "M"});
        }
    }
    return modules;
}

}  // namespace

std::string os_version_of(const std::string& root) {
    const std::optional<std::string> release = line_of(root + "/proc/sys/kernel/osrelease");
    if (!release || release->empty()) return {};
    const std::string distribution = distribution_of(root);
    return "Linux " + *release + (distribution.empty() ? "" : " (" + distribution + ")");
}

ProcessorCounts processor_counts_of(const std::string& root) {
    ProcessorCounts counts;
    std::set<std::int64_t> packages;
    std::set<std::tuple<std::int64_t, std::int64_t, std::int64_t>> cores;
    bool packages_known = true;
    for (const auto& [number, folder] : numbered_entries(root + "/sys/devices/system/cpu", "cpu")) {
        const auto core = number_in<std::int64_t>(folder + "/topology/core_id");
        const bool offline = number_in<int>(folder + "/online").value_or(1) == 0;
        if (!core || offline) continue;
        const auto package = number_in<std::int64_t>(folder + "/topology/physical_package_id").value_or(-1);
        // Numbers of cores may begin anew on every die.
        const auto die = number_in<std::int64_t>(folder + "/topology/die_id").value_or(0);
        ++counts.logical_cores;
        cores.insert({package, die, *core});
        packages.insert(package);
        packages_known = packages_known && package >= 0;
    }
    counts.physical_cores = static_cast<std::uint32_t>(cores.size());
    if (packages_known) counts.sockets = static_cast<std::uint32_t>(packages.size());
    return counts;
}

std::uint64_t base_frequency_of(const std::string& root) {
    const std::string processor = root + "/sys/devices/system/cpu/cpu0";
    const auto kilohertz = number_in<std::uint64_t>(processor + "/cpufreq/base_frequency");
    if (kilohertz && *kilohertz > 0) return *kilohertz * 1000;
    const auto nominal_megahertz = number_in<std::uint64_t>(processor + "/acpi_cppc/nominal_freq");
    if (nominal_megahertz && *nominal_megahertz > 0) return *nominal_megahertz * 1'000'000;
    // The states of a driver that leaves turbo out of them, the fastest first.
    const auto fastest = number_in<std::uint64_t>(processor + "/cpufreq/scaling_available_frequencies");
    if (fastest && *fastest > 0) return *fastest * 1000;
    std::error_code error;
    if (std::filesystem::exists(processor + "/cpufreq", error)) return 0;
    return guest_frequency(root);
}

std::uint64_t memory_blocks_of(const std::string& root) {
    const std::string folder = root + "/sys/devices/system/memory";
    const auto block = number_in<std::uint64_t>(folder + "/block_size_bytes", 16);
    return block ? *block * numbered_entries(folder, "memory").size() : 0;
}

Motherboard motherboard_of(const std::string& root, SerialNumber serial_number) {
    const auto text = [&](const char* name) {
        return line_of(root + "/sys/class/dmi/id/" + name).value_or(std::string());
    };
    Motherboard board{text("board_vendor"), text("board_name"), text("board_version"), {}};
    if (serial_number == SerialNumber::read) board.serial_number = text("board_serial");
    return board;
}

std::vector<MemoryModule> memory_modules_of(const std::string& root) {
    std::vector<MemoryModule> modules =
        memory_modules_in_smbios(bytes_of(root + "/sys/firmware/dmi/tables/DMI"));
    return modules.empty() ? modules_of_controllers(root) : modules;
}

}  // namespace qmp::os
