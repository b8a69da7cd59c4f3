// Where Swap Mode keeps its files: groups of folders, each a RAID 0 (striping) or a RAID 3 (striping, and a
// file of parity on the last path). Far memory is spread evenly over the groups.
//
// This is data with its rules; folders are only probed for being writable. An empty folder stands for the
// default one, the program's own.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/component_settings.h"

namespace qmp {

// By their numbers in settings records.
enum class RaidType : std::uint32_t { raid0 = 0, raid3 = 1 };

struct RaidPath {
    std::string folder;       // as the user gave it
    std::int32_t status = 0;  // 0: healthy; n > 0: I/O errors seen; negative: failed
};

struct RaidGroup {
    RaidType type = RaidType::raid0;
    std::vector<RaidPath> paths = {};
    // Planned by the settings. Bytes of one stripe unit in each path's file, 0 as long as there are no data
    // paths; and how many of them a path's buffer holds.
    std::uint64_t file_block_size = 0;
    std::uint64_t blocks_per_buffer = 1;

    // The paths that hold data: all of a RAID 0, all but one of a RAID 3. A group without any is of no use.
    std::uint64_t data_paths() const;
    std::uint64_t group_block_size() const { return data_paths() * file_block_size; }  // bytes
    std::uint64_t failed_paths() const;
};

class RaidSettings final : public ComponentSettings {
  public:
    static constexpr std::uint64_t most_groups = 64;
    static constexpr std::uint64_t most_paths = 8;  // of a group
    static constexpr std::uint64_t default_buffer = std::uint64_t{64} << 20;
    static constexpr std::uint64_t least_buffer = std::uint64_t{1} << 20;
    // So that no sum of buffers overflows.
    static constexpr std::uint64_t largest_buffer = std::uint64_t{1} << 50;

    // No group yet: the configuration is not set.
    const std::vector<RaidGroup>& groups() const { return groups_; }
    std::uint64_t path_count() const;
    // There is a group, and every group has data paths.
    bool is_valid() const;
    // Of any group; at least 1.
    std::uint64_t most_data_paths() const;

    // Bytes. The total is what all the paths' buffers take, in whole blocks.
    std::uint64_t buffer_per_file() const { return buffer_per_file_; }
    std::uint64_t buffer_total() const { return buffer_total_; }
    // Brought between the least and the largest buffer.
    void set_buffer_per_file(std::uint64_t bytes);

    // These return an error text, empty for success, and change nothing when they fail. The group exists.
    std::string add_group(RaidType type);
    std::string add_path(std::uint64_t group, const std::string& folder);
    // All new: a RAID 0 group for each folder, or one RAID 3 group of all. More than 64 folders are a
    // Raid0Exception, more than 8 of a RAID 3 a Raid03Exception.
    std::string set_raid0(const std::vector<std::string>& folders);
    std::string set_raid3(const std::vector<std::string>& folders);
    // No groups, and the default buffers.
    void clear() { *this = RaidSettings(); }

    // Bytes that can be transferred in the time of a seek, as long as nobody measured them: 1 MiB for each
    // group and each path of the widest one.
    std::uint64_t default_bytes_per_seek() const;

    // A record begins with the line "Raid-File 0/3 Settings". What follows from the groups stands in it to be
    // read by people; it is computed again when a record is loaded. Paths are not probed then.
    std::string print_settings() const override;
    void load_settings(TextCursor& cursor) override;
    // "BufferPerFile" and "Lanes". Besides ParseExceptions the reader throws InvalidParametersException
    // "Invalid Raid Type: TYPE" and "Failed to build Raid-File: REASON".
    notation::Object write_config() const override;
    void read_config(const notation::Object& object) override;

  private:
    // After every change of the groups.
    void plan();
    void plan_block_sizes();

    std::vector<RaidGroup> groups_;
    std::uint64_t buffer_per_file_ = default_buffer;
    std::uint64_t buffer_total_ = default_buffer;
};

}  // namespace qmp
