#include "platform/os/linux/control_group.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <optional>
#include <sstream>
#include <string>

namespace qmp::os {
namespace {

constexpr std::uint64_t unlimited = std::numeric_limits<std::uint64_t>::max();

// The names of the two versions of the interface.
struct Interface {
    const char* mount;
    const char* limit;
    const char* usage;
    const char* reclaimable;  // its line of memory.stat
};
constexpr Interface version_1 = {"/sys/fs/cgroup/memory", "memory.limit_in_bytes", "memory.usage_in_bytes",
                                 "total_inactive_file"};
constexpr Interface version_2 = {"/sys/fs/cgroup", "memory.max", "memory.current", "inactive_file"};

std::optional<std::uint64_t> number_in(const std::string& path) {
    std::ifstream file(path);
    std::uint64_t value;
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

std::uint64_t left_in(const Interface& names, const std::string& group) {
    const std::string folder = names.mount + group + "/";
    const auto limit = number_in(folder + names.limit);
    const auto usage = number_in(folder + names.usage);
    if (!limit || !usage) return unlimited;
    const std::uint64_t reclaimable = statistic(folder + "memory.stat", names.reclaimable);
    const std::uint64_t used = *usage - std::min(*usage, reclaimable);
    return *limit - std::min(*limit, used);
}

// A group is bound by the limits of all groups above it as well. Inside a container the paths may name
// folders that only the host sees; the root folder is then the container's own group.
std::uint64_t left_in_hierarchy(const Interface& names, std::string group) {
    std::uint64_t left = unlimited;
    while (!group.empty()) {
        if (group != "/") left = std::min(left, left_in(names, group));
        group.erase(group.find_last_of('/'));
    }
    return std::min(left, left_in(names, ""));
}

}  // namespace

std::uint64_t control_group_memory_left() {
    // Lines of "number:controllers:path"; version 2 has number 0 and no controllers.
    std::ifstream groups("/proc/self/cgroup");
    std::uint64_t left = unlimited;
    std::string line;
    while (std::getline(groups, line)) {
        const std::size_t first = line.find(':');
        const std::size_t second = line.find(':', first + 1);
        if (second == std::string::npos || line.compare(second + 1, 1, "/") != 0) continue;
        const std::string controllers = line.substr(first + 1, second - first - 1);
        const std::string path = line.substr(second + 1);
        if (controllers == "memory") left = std::min(left, left_in_hierarchy(version_1, path));
        if (controllers.empty()) left = std::min(left, left_in_hierarchy(version_2, path));
    }
    return left;
}

}  // namespace qmp::os
