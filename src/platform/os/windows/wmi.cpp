#include "platform/os/windows/wmi.h"

namespace qmp::os {

using Environment::WMI_Exception;

std::vector<WmiRow> query_wmi(std::string_view class_name, std::span<const std::string_view> properties,
                              WmiService& service) {
    if (!service.initialize_com()) throw WMI_Exception("Failed to initialize COM library.");
    if (!service.create_locator()) throw WMI_Exception("Failed to obtain initial locator to WMI.");
    if (!service.connect("ROOT\\CIMV2")) throw WMI_Exception("Could not connect.");
    std::optional<std::vector<WmiRow>> rows =
        service.query("WQL", "SELECT * FROM " + std::string(class_name), properties);
    if (!rows) throw WMI_Exception("Query for object failed.");
    return std::move(*rows);
}

}  // namespace qmp::os
