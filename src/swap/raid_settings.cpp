#include "swap/raid_settings.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "errors/file_exception.h"
#include "platform/startup_state.h"
#include "swap/sequential_file.h"

namespace qmp {
namespace {

// The sectors of every disk divide it, so that transfers need no alignment of their own.
constexpr std::uint64_t sector = 4096;
// Of the group with most data paths: below it, transfers spend their time on seeks.
constexpr std::uint64_t least_file_block = 262'144;

bool is_writable(const std::string& folder) {
    const std::string& probed = folder.empty() ? kelvara::program_directory() : folder;
    return FileIO::path_check(probed.empty() ? "." : probed);
}

}  // namespace

std::uint64_t RaidGroup::data_paths() const {
    if (type == RaidType::raid0) return paths.size();
    return paths.empty() ? 0 : paths.size() - 1;
}

std::uint64_t RaidGroup::failed_paths() const {
    return static_cast<std::uint64_t>(
        std::count_if(paths.begin(), paths.end(), [](const RaidPath& path) { return path.status < 0; }));
}

std::uint64_t RaidSettings::path_count() const {
    std::uint64_t count = 0;
    for (const RaidGroup& group : groups_) count += group.paths.size();
    return count;
}

bool RaidSettings::is_valid() const {
    const auto usable = [](const RaidGroup& group) { return group.data_paths() > 0; };
    return !groups_.empty() && std::all_of(groups_.begin(), groups_.end(), usable);
}

std::uint64_t RaidSettings::most_data_paths() const {
    std::uint64_t most = 1;
    for (const RaidGroup& group : groups_) most = std::max(most, group.data_paths());
    return most;
}

std::uint64_t RaidSettings::default_bytes_per_seek() const {
    constexpr std::uint64_t of_one_drive = 1'048'576;
    return of_one_drive * std::max<std::uint64_t>(groups_.size(), 1) * most_data_paths();
}

void RaidSettings::set_buffer_per_file(std::uint64_t bytes) {
    buffer_per_file_ = std::clamp(bytes, least_buffer, largest_buffer);
    buffer_total_ = 0;
    for (RaidGroup& group : groups_) {
        if (group.data_paths() == 0) continue;
        group.blocks_per_buffer = std::max<std::uint64_t>(buffer_per_file_ / group.file_block_size, 1);
        buffer_total_ += group.paths.size() * group.file_block_size * group.blocks_per_buffer;
    }
    if (buffer_total_ == 0) buffer_total_ = buffer_per_file_;
}

std::string RaidSettings::add_group(RaidType type) {
    if (groups_.size() == most_groups) return "The maximum number of groups has been exceeded.";
    groups_.push_back({.type = type});
    plan();
    return {};
}

std::string RaidSettings::add_path(std::uint64_t group, const std::string& folder) {
    std::vector<RaidPath>& paths = groups_.at(group).paths;
    if (paths.size() == most_paths) return "The maximum number of paths per group has been exceeded.";
    if (!is_writable(folder)) return "This path is not writable.";
    paths.push_back({.folder = folder});
    plan();
    return {};
}

std::string RaidSettings::set_raid0(const std::vector<std::string>& folders) {
    if (folders.size() > most_groups) {
        throw DiskRaid0::Raid0Exception("set_raid0()", "There is a limit of 64 paths for RAID0.", "", 0);
    }
    RaidSettings settings;
    for (const std::string& folder : folders) {
        settings.add_group(RaidType::raid0);
        const std::string error = settings.add_path(settings.groups_.size() - 1, folder);
        if (!error.empty()) return error;
    }
    *this = std::move(settings);
    return {};
}

std::string RaidSettings::set_raid3(const std::vector<std::string>& folders) {
    if (folders.size() > most_paths) {
        throw R03::Raid03Exception("set_raid3()", "There is a limit of 8 paths for RAID3.", "", 0);
    }
    RaidSettings settings;
    settings.add_group(RaidType::raid3);
    for (const std::string& folder : folders) {
        const std::string error = settings.add_path(0, folder);
        if (!error.empty()) return error;
    }
    *this = std::move(settings);
    return {};
}

void RaidSettings::plan() {
    plan_block_sizes();
    set_buffer_per_file(buffer_per_file_);
}

// All groups get one block size, so that a transfer keeps them busy for the same time: a common multiple of
// what is a sector on each of their data paths.
void RaidSettings::plan_block_sizes() {
    std::uint64_t group_block = 1;
    for (const RaidGroup& group : groups_) {
        if (group.data_paths() > 0) group_block = std::lcm(group_block, group.data_paths() * sector);
    }
    std::uint64_t smallest_file_block = group_block / most_data_paths();
    while (smallest_file_block < least_file_block) {
        smallest_file_block *= 2;
        group_block *= 2;
    }
    for (RaidGroup& group : groups_) {
        if (group.data_paths() > 0) group.file_block_size = group_block / group.data_paths();
    }
}

}  // namespace qmp
