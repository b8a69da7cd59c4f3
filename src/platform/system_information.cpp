#include "platform/system_information.h"

#include <string_view>

#include "console/console.h"
#include "console/format.h"
#include "console/parse.h"
#include "platform/build_identity.h"
#include "platform/os/memory.h"
#include "platform/processor_identity.h"
#include "platform/startup_state.h"
#include "platform/topology.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

constexpr const char* undetected = "Unable to Detect";
constexpr const char* suppressed = "Suppressed - Personally identifiable information is opt-in only.";

std::string text_or_undetected(const std::string& text) {
    return text.empty() ? undetected : text;
}

std::string bytes_or_undetected(std::uint64_t bytes) {
    return bytes == 0 ? undetected : console::format_separated_bytes(bytes);
}

std::string count_or_undetected(std::uint64_t count) {
    return count == 0 ? undetected : console::format_separated(count);
}

std::string frequency_or_undetected(std::uint64_t hertz) {
    return hertz == 0 ? undetected : console::format_separated(hertz) + " Hz";
}

// "1 socket", "2 sockets", "? sockets".
std::string counted(std::uint64_t count, std::string_view word) {
    std::string text = count == 0 ? "?" : console::format_int(count);
    text += ' ';
    text += word;
    if (count != 1) text += 's';
    return text;
}

std::string topology_text(const SystemInformation& information) {
    return counted(information.logical_cores, "thread") + " / " +
           counted(information.physical_cores, "core") + " / " + counted(information.sockets, "socket") +
           " / " + counted(information.numa_nodes, "NUMA node");
}

// What is known of a module, in one line.
std::string module_text(const MemoryModule& module) {
    std::string text;
    for (const std::string& part : {module.manufacturer, module.part_number}) {
        if (!part.empty()) text += part + ", ";
    }
    return text + bytes_or_undetected(module.capacity);
}

// A file's labels fill one column, whatever their indentation.
std::string file_line(std::string label, const std::string& value) {
    constexpr std::size_t value_column = 23;
    if (label.size() < value_column) label.resize(value_column, ' ');
    return label + value + "\r\n";
}

}  // namespace

MemoryModule memory_module_of(const qmp::os::MemoryModule& module) {
    return {module.manufacturer, module.part_number, console::parse_bytes(module.capacity)};
}

SystemInformation gather_system_info() {
    SystemInformation information;
    information.os_version = qmp::os::os_version();

    const qmp::IdentityLeaves leaves = qmp::read_identity_leaves();
    information.processor_name = qmp::processor_name_of(leaves);
    information.base_frequency = qmp::base_frequency_of(leaves);
    if (information.base_frequency == 0) information.base_frequency = qmp::os::base_frequency();

    const qmp::os::ProcessorCounts counts = qmp::os::processor_counts();
    information.logical_cores = counts.logical_cores;
    information.physical_cores = counts.physical_cores;
    information.sockets = counts.sockets;
    information.numa_nodes = qmp::numa_table().size();

    information.total_memory = qmp::os::installed_memory();
    information.usable_memory = qmp::os::total_physical_memory();

    const bool show_serial_number = startup_state().personal_data_shown;
    qmp::os::Motherboard board = qmp::os::motherboard(show_serial_number ? qmp::os::SerialNumber::read
                                                                         : qmp::os::SerialNumber::leave_out);
    information.motherboard_manufacturer = std::move(board.manufacturer);
    information.motherboard_model = std::move(board.model);
    information.motherboard_version = std::move(board.version);
    information.motherboard_serial_number = show_serial_number ? std::move(board.serial_number) : suppressed;

    for (const qmp::os::MemoryModule& module : qmp::os::memory_modules()) {
        information.memory_modules.push_back(memory_module_of(module));
    }
    return information;
}

void print_system_info(const SystemInformation& information) {
    constexpr std::uint64_t column = 22;
    console::set_color('t');
    console::print_column_line(column, "Version:", build_version_with_target());
    console::print_column_line(column, "Processor(s):", text_or_undetected(information.processor_name));
    console::print_column_line(column, "Topology:", topology_text(information));
    console::print_column_line(column, "Physical Memory:", bytes_or_undetected(information.total_memory));
    console::print_column_line(column, "Usable Memory:", bytes_or_undetected(information.usable_memory));
    // The two labels differ in more than their values, and readers of screens know both.
    console::print_column_line(
        column, information.base_frequency == 0 ? " CPU BaseFrequency:" : "CPU Base Frequency:",
        frequency_or_undetected(information.base_frequency));
    console::reset_color();
}

std::string system_info_text(const SystemInformation& information) {
    std::string text = file_line("Operating System:", information.os_version);
    text += "Processor(s):\r\n";
    text += file_line("    Name:", text_or_undetected(information.processor_name));
    text += file_line("    Logical Cores:", count_or_undetected(information.logical_cores));
    text += file_line("    Physical Cores:", count_or_undetected(information.physical_cores));
    text += file_line("    Sockets:", count_or_undetected(information.sockets));
    text += file_line("    NUMA Nodes:", count_or_undetected(information.numa_nodes));
    text += file_line("    Base Frequency:", frequency_or_undetected(information.base_frequency));
    text += "Motherboard:\r\n";
    text += file_line("    Manufacturer:", text_or_undetected(information.motherboard_manufacturer));
    text += file_line("    Model:", text_or_undetected(information.motherboard_model));
    text += file_line("    Version:", text_or_undetected(information.motherboard_version));
    text += file_line("    Serial Number:", text_or_undetected(information.motherboard_serial_number));
    text += "Memory:\r\n";
    text += file_line("    Usable Memory:", bytes_or_undetected(information.usable_memory));
    text += file_line("    Total Memory:", bytes_or_undetected(information.total_memory));
    for (const MemoryModule& module : information.memory_modules) {
        text += file_line("    DIMM:", module_text(module));
    }
    return text + "\r\n";
}

}  // namespace kelvara
