// The swap files' settings as records and as objects of a configuration.
#include <string>
#include <utility>

#include "config/settings_record.h"
#include "config/text_cursor.h"
#include "errors/exception.h"
#include "swap/raid_settings.h"

namespace qmp {
namespace {

constexpr std::string_view context = "Raid-File 0/3";

[[noreturn]] void refuse_type(const std::string& type) {
    throw InvalidParametersException("", "Invalid Raid Type: " + type);
}

void require_success(const std::string& error) {
    if (!error.empty()) throw InvalidParametersException("", "Failed to build Raid-File: " + error);
}

RaidType type_of_name(const std::string& name) {
    if (name == "raid0") return RaidType::raid0;
    if (name == "raid3") return RaidType::raid3;
    refuse_type(name);
}

RaidType type_of_number(std::int64_t number) {
    if (number != 0 && number != 1) refuse_type(std::to_string(number));
    return static_cast<RaidType>(number);
}

notation::Object write_group(const RaidGroup& group, std::uint64_t index) {
    notation::Object object;
    object.comment = "Lane " + std::to_string(index);
    object.insert_string("Type", group.type == RaidType::raid0 ? "raid0" : "raid3");
    auto paths = std::make_unique<notation::Array>();
    for (const RaidPath& path : group.paths) paths->append(std::make_unique<notation::String>(path.folder));
    object.insert("Paths", std::move(paths));
    return object;
}

std::int64_t read_count(TextCursor& cursor, std::uint64_t most, const char* error) {
    const std::int64_t count = cursor.read_integer_field();
    if (count < 0 || static_cast<std::uint64_t>(count) > most) require_success(error);
    return count;
}

}  // namespace

std::string RaidSettings::print_settings() const {
    SettingsRecordWriter lines;
    lines.write_string("Raid-File 0/3 Settings", "")
        .write_integer("files          :", static_cast<std::int64_t>(groups_.size()))
        .write_integer("buffer_per_file:", static_cast<std::int64_t>(buffer_per_file_))
        .write_integer("buffer_total   :", static_cast<std::int64_t>(buffer_total_));
    for (std::size_t index = 0; index < groups_.size(); ++index) {
        const RaidGroup& group = groups_[index];
        lines.write_integer("Drive:", static_cast<std::int64_t>(index))
            .write_integer("type       :", static_cast<std::int64_t>(group.type))
            .write_integer("files      :", static_cast<std::int64_t>(group.paths.size()))
            .write_integer("failed     :", static_cast<std::int64_t>(group.failed_paths()))
            .write_integer("block      :", static_cast<std::int64_t>(group.file_block_size))
            .write_integer("buffer_L   :", static_cast<std::int64_t>(group.blocks_per_buffer));
        for (const RaidPath& path : group.paths) {
            lines.write_string("Path       :", path.folder).write_integer("Status     :", path.status);
        }
    }
    return lines.take();
}

void RaidSettings::load_settings(TextCursor& cursor) {
    RaidSettings settings;
    cursor.read_string_field();  // the name
    const std::int64_t groups =
        read_count(cursor, most_groups, "The maximum number of groups has been exceeded.");
    const std::int64_t buffer_per_file = cursor.read_integer_field();
    cursor.read_integer_field();  // the buffers' total
    for (std::int64_t index = 0; index < groups; ++index) {
        cursor.read_integer_field();  // the group's number
        RaidGroup group{.type = type_of_number(cursor.read_integer_field())};
        const std::int64_t paths =
            read_count(cursor, most_paths, "The maximum number of paths per group has been exceeded.");
        for (int derived = 0; derived < 3; ++derived) cursor.read_integer_field();
        for (std::int64_t path = 0; path < paths; ++path) {
            std::string folder = cursor.read_string_field();
            group.paths.push_back(
                {std::move(folder), static_cast<std::int32_t>(cursor.read_integer_field())});
        }
        settings.groups_.push_back(std::move(group));
    }
    settings.plan_block_sizes();
    settings.set_buffer_per_file(static_cast<std::uint64_t>(std::max<std::int64_t>(buffer_per_file, 0)));
    *this = std::move(settings);
}

notation::Object RaidSettings::write_config() const {
    notation::Object object;
    object.insert_integer("BufferPerFile", static_cast<std::int64_t>(buffer_per_file_));
    auto lanes = std::make_unique<notation::Array>();
    for (std::size_t index = 0; index < groups_.size(); ++index) {
        lanes->append(std::make_unique<notation::Object>(write_group(groups_[index], index)));
    }
    object.insert("Lanes", std::move(lanes));
    return object;
}

void RaidSettings::read_config(const notation::Object& object) {
    RaidSettings settings;
    const std::int64_t buffer_per_file = object.get_integer("BufferPerFile", context);
    const notation::Array& lanes = object.get_array("Lanes", context);
    for (std::uint64_t index = 0; index < lanes.size(); ++index) {
        const notation::Object& lane = notation::as_object(lanes[index], context);
        require_success(settings.add_group(type_of_name(lane.get_string("Type", context))));
        const notation::Array& paths = lane.get_array("Paths", context);
        for (std::uint64_t path = 0; path < paths.size(); ++path) {
            require_success(settings.add_path(index, notation::as_string(paths[path], context)));
        }
    }
    settings.set_buffer_per_file(static_cast<std::uint64_t>(std::max<std::int64_t>(buffer_per_file, 0)));
    *this = std::move(settings);
}

}  // namespace qmp
