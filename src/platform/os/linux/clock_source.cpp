#include "platform/os/linux/clock_source.h"

#include <fstream>

namespace qmp::os {

std::optional<std::string_view> clock_source_in(const std::string& path) {
    std::ifstream file(path);
    std::string name;
    if (!(file >> name)) return std::nullopt;
    if (name == "tsc") return "TSC";
    if (name == "hpet") return "HPET";
    if (name == "acpi_pm") return "ACPI";
    return "";
}

}  // namespace qmp::os
