#include "platform/os/linux/control_group.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <optional>
#include <sstream>
#include <string_view>

namespace qmp::os {
namespace {

constexpr std::uint64_t unlimited = std::numeric_limits<std::uint64_t>::max();

// One controller in the two versions of the interface: what the folder of a group allows.
struct Controller {
    std::string_view name;
    std::uint64_t (*version_1)(const std::string& folder);
    std::uint64_t (*version_2)(const std::string& folder);
};

std::optional<std::int64_t> number_in(const std::string& path) {
    std::ifstream file(path);
    std::int64_t value;
    if (file >> value) return value;
    return std::nullopt;  // no such file, or "max"
}

std::uint64_t statistic(const std::string& path, const std::string& wanted) {
    std::ifstream file(path);
    std::string name;
    std::uint64_t value;
    while (file >> name >> value) {
        if (name == wanted) return value;
    }
    return 0;
}

std::uint64_t memory_left(const std::string& folder, const char* limit_file, const char* usage_file,
                          const char* reclaimable_statistic) {
    const auto limit = number_in(folder + limit_file);
    const auto usage = number_in(folder + usage_file);
    if (!limit || !usage || *limit < 0 || *usage < 0) return unlimited;
    const auto all = static_cast<std::uint64_t>(*usage);
    const std::uint64_t used = all - std::min(all, statistic(folder + "memory.stat", reclaimable_statistic));
    return static_cast<std::uint64_t>(*limit) - std::min(static_cast<std::uint64_t>(*limit), used);
}

constexpr Controller memory_controller = {
    "memory",
    [](const std::string& folder) {
        return memory_left(folder, "memory.limit_in_bytes", "memory.usage_in_bytes", "total_inactive_file");
    },
    [](const std::string& folder) {
        return memory_left(folder, "memory.max", "memory.current", "inactive_file");
    }};

// Microseconds of processor time in each period of wall time.
std::uint64_t busy_processors(std::optional<std::int64_t> quota, std::optional<std::int64_t> period) {
    if (!quota || !period || *quota <= 0 || *period <= 0) return unlimited;  // -1 is no quota
    return static_cast<std::uint64_t>((*quota - 1) / *period) + 1;
}

constexpr Controller processor_controller = {"cpu",
                                             [](const std::string& folder) {
                                                 return busy_processors(
                                                     number_in(folder + "cpu.cfs_quota_us"),
                                                     number_in(folder + "cpu.cfs_period_us"));
                                             },
                                             [](const std::string& folder) {
                                                 std::ifstream file(folder + "cpu.max");
                                                 std::int64_t quota;
                                                 std::int64_t period;
                                                 if (!(file >> quota >> period))
                                                     return unlimited;  // no such file, or "max"
                                                 return busy_processors(quota, period);
                                             }};

// The least that the group and those above it allow. Inside a container the path may name folders that only
// the host sees; the root folder is then the container's own group.
std::uint64_t least_in_hierarchy(std::uint64_t (*allowed)(const std::string& folder),
                                 const std::string& mount, std::string group) {
    std::uint64_t least = unlimited;
    while (!group.empty()) {
        if (group != "/") least = std::min(least, allowed(mount + group + "/"));
        group.erase(group.find_last_of('/'));
    }
    return std::min(least, allowed(mount + "/"));
}

// Whether a list of names separated by commas holds this one.
bool names(const std::string& list, std::string_view wanted) {
    std::istringstream stream(list);
    std::string name;
    while (std::getline(stream, name, ',')) {
        if (name == wanted) return true;
    }
    return false;
}

std::uint64_t least_allowed(const Controller& controller, const ControlGroupFiles& files) {
    // Lines of "number:controllers:path"; version 2 has number 0 and no controllers.
    std::ifstream groups(files.membership);
    std::uint64_t least = unlimited;
    std::string line;
    while (std::getline(groups, line)) {
        const std::size_t first = line.find(':');
        const std::size_t second = line.find(':', first + 1);
        if (second == std::string::npos || line.compare(second + 1, 1, "/") != 0) continue;
        const std::string controllers = line.substr(first + 1, second - first - 1);
        const std::string path = line.substr(second + 1);
        if (controllers.empty()) {
            least = std::min(least, least_in_hierarchy(controller.version_2, files.mount, path));
        } else if (names(controllers, controller.name)) {
            // Mounted under the one name, which can be a link, or under the whole list.
            for (const std::string& folder : {std::string(controller.name), controllers}) {
                least = std::min(least,
                                 least_in_hierarchy(controller.version_1, files.mount + "/" + folder, path));
            }
        }
    }
    return least;
}

}  // namespace

std::uint64_t control_group_memory_left(const ControlGroupFiles& files) {
    return least_allowed(memory_controller, files);
}

std::uint64_t control_group_processors(const ControlGroupFiles& files) {
    return least_allowed(processor_controller, files);
}

}  // namespace qmp::os
