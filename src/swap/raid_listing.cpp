#include "swap/raid_listing.h"

#include <algorithm>

#include "console/console.h"
#include "console/format.h"
#include "console/labels.h"

namespace qmp {
namespace {

constexpr std::uint64_t head_column = 20;
constexpr std::uint64_t group_column = 28;

std::string shown_folder(const RaidPath& path) {
    return path.folder.empty() ? "** Default Path **" : path.folder;
}

void print_head(const RaidSettings& settings) {
    const std::vector<RaidGroup>& groups = settings.groups();
    console::println(std::string(60, '='), 'w');
    console::println("\nCurrent Raid-File Settings\n", 'P');
    console::print_column_signed(head_column, "Total Groups", static_cast<std::int64_t>(groups.size()), 'G');
    if (groups.empty()) {
        console::println("Empty - You must have at least one group.\n", 'R');
        console::reset_color();
        return;
    }
    console::print_column_separated_bytes(head_column, "Block Size",
                                          groups.size() * groups.front().group_block_size(), 'G');
    console::print_column(head_column, "Buffer Size",
                          console::format_separated_bytes(settings.buffer_total()), 'G');
    console::println(" ( ~ " + console::format_bytes(settings.buffer_per_file()) + " / drive )", 'w');
    console::newline();
}

void print_path(const RaidPath& path) {
    console::write("        " + shown_folder(path), 'T');
    if (path.status == 0) {
        console::println("   ( Status: ok )", 'G');
    } else if (path.status < 0) {
        console::println("   ( Status: Failed )", 'R');
    } else {
        const char* errors = path.status == 1 ? " error )" : " errors )";
        console::println("   ( Status: " + std::to_string(path.status) + errors, 'Y');
    }
    console::reset_color();
}

void print_paths(const RaidGroup& group) {
    if (group.paths.empty()) {
        console::println(group.type == RaidType::raid0
                             ? "        Empty - You must have at least one path.\n"
                             : "        Empty - You must have at least two paths.\n",
                         'R');
        console::reset_color();
        return;
    }
    for (const RaidPath& path : group.paths) print_path(path);
    console::newline();
}

void print_bytes_needed(const RaidGroup& group, std::optional<std::uint64_t> bytes) {
    const char* label = "    Bytes Needed Per Path";
    if (!bytes || group.data_paths() == 0) {
        console::print_column_line(group_column, label, "Unknown", 'y');
        return;
    }
    console::print_column_separated_bytes(group_column, label, *bytes / group.data_paths(), 'Y');
}

void print_group(const RaidGroup& group, std::uint64_t number, std::optional<std::uint64_t> bytes) {
    const std::uint64_t paths = group.paths.size();
    console::write("Group " + std::to_string(number) + ":\n    ", 'w');
    console::write(std::to_string(paths) + (paths == 1 ? " drive with " : " drives with "));
    if (group.type == RaidType::raid0) {
        console::write("No Redundancy", 'Y');
        console::println(". (no fault tolerance)", 'w');
    } else {
        console::write("Single-Bit Parity", 'G');
        console::println(". (tolerate 1 drive failure)", 'w');
    }
    console::newline();
    print_bytes_needed(group, bytes);
    console::print_column_separated_bytes(group_column, "    Group Block Size", group.group_block_size(),
                                          'G');
    console::print_column_separated_bytes(group_column, "    File Block Size", group.file_block_size, 'G');
    console::newline();
    print_paths(group);
}

}  // namespace

std::string raid_summary(const RaidSettings& settings) {
    if (!settings.is_valid()) return "Invalid Configuration.";
    const std::vector<RaidGroup>& groups = settings.groups();
    const std::string count = std::to_string(settings.path_count());
    if (groups.size() == 1 && groups.front().type == RaidType::raid3)
        return "RAID 3 with " + count + " paths";
    const auto is_one_path = [](const RaidGroup& group) {
        return group.type == RaidType::raid0 && group.paths.size() == 1;
    };
    const bool single_paths = std::all_of(groups.begin(), groups.end(), is_one_path);
    if (single_paths && groups.size() == 1)
        return "One path at: " + shown_folder(groups.front().paths.front());
    if (single_paths || groups.size() == 1) return "RAID 0 with " + count + " paths";
    return "Custom Configuration with " + count + " paths";
}

void print_raid_settings(const RaidSettings& settings, std::optional<std::uint64_t> bytes_per_group) {
    print_head(settings);
    for (std::size_t number = 0; number < settings.groups().size(); ++number) {
        print_group(settings.groups()[number], number, bytes_per_group);
    }
}

}  // namespace qmp
