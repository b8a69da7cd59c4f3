#include "swap/raid_menu.h"

#include <vector>

#include "console/console.h"
#include "console/input.h"
#include "errors/exception.h"
#include "swap/raid_listing.h"

namespace qmp {
namespace {

constexpr std::uint64_t column = 24;

// The answer 0 is only taken from a valid configuration.
std::int64_t ask_option(const RaidSettings& settings) {
    console::print_column_line(column, "1  -  Quick Configure:", "Default Path Only", 'T');
    console::print_column(column, "2  -  Quick Configure:", "RAID 0", 'Y');
    console::println("  (No Redundancy)", 'w');
    console::print_column(column, "3  -  Quick Configure:", "RAID 3", 'G');
    console::println("  (Tolerate 1 Drive Failure)\n", 'w');
    console::println("Manual Configure Hybrid RAID:");
    console::println("4  -      Add a new Group");
    console::println("5  -      Add a new Drive/Path");
    console::newline();
    console::println("6  -  Set per-drive Buffer Size");
    console::println("7  -  Clear All and Start Over");
    console::newline();
    const bool valid = settings.is_valid();
    if (valid) {
        console::println("0  -  Done\n");
    } else {
        console::println("The current configuration is invalid.\n", 'R');
        console::reset_color();
    }
    return console::read_int_in_range("option: ", valid ? 0 : 1, 7, 'T');
}

void report(const std::string& error) {
    if (!error.empty()) console::print_warning(error);
}

std::vector<std::string> ask_paths(std::int64_t least, std::int64_t most) {
    console::println(
        "How many drives? (min = " + std::to_string(least) + ", max = " + std::to_string(most) + ")", 'w');
    const std::int64_t count = console::read_int_in_range("Drives: ", least, most, 'T');
    console::println("\nEnter the Paths. (Blank path will use the default path.)", 'w');
    std::vector<std::string> folders;
    for (std::int64_t path = 0; path < count; ++path) {
        folders.push_back(console::read_labelled_line("Path " + std::to_string(path), 'T'));
    }
    return folders;
}

void ask_raid0(RaidSettings& settings) {
    console::println("Configure RAID 0\n", 'P');
    report(settings.set_raid0(ask_paths(1, RaidSettings::most_groups)));
}

void ask_raid3(RaidSettings& settings) {
    console::println("Configure RAID 3\n", 'P');
    report(settings.set_raid3(ask_paths(2, RaidSettings::most_paths)));
}

void ask_group(RaidSettings& settings) {
    console::println("Add a new Group\n", 'P');
    if (settings.groups().size() == RaidSettings::most_groups) {
        report("The maximum number of groups has been exceeded.");
        return;
    }
    console::println("Select Raid Mode:\n", 'w');
    console::write("0  -  ");
    console::write("RAID 0", 'Y');
    console::println("  ( Multiple Drives - No Redundancy. )", 'w');
    console::write("1  -  ");
    console::write("RAID 3", 'G');
    console::println("  ( Tolerate up to 1 drive failure. )", 'w');
    console::println("2  -  Cancel");
    console::newline();
    const std::int64_t choice = console::read_int_in_range("choice: ", 0, 2, 'T');
    if (choice != 2) report(settings.add_group(choice == 0 ? RaidType::raid0 : RaidType::raid3));
}

void ask_path(RaidSettings& settings) {
    console::println("Add a new Path\n", 'P');
    if (settings.groups().empty()) {
        report("Please add a group first.");
        return;
    }
    const auto last = static_cast<std::int64_t>(settings.groups().size()) - 1;
    const std::int64_t group = console::read_int_in_range("Which Group: ", 0, last, 'T');
    console::newline();
    console::println("Enter Path. (Blank path will use the default path.)", 'w');
    report(settings.add_path(static_cast<std::uint64_t>(group), console::read_labelled_line("Path ", 'T')));
}

void ask_buffer_size(RaidSettings& settings) {
    console::println("Configure Buffer Size\n", 'P');
    console::println("Each path needs a separate buffer for disk I/O.", 'w');
    console::newline();
    console::println("This buffer is used for sector alignment and raid striping. Larger buffers");
    console::println("may increase efficiency, but will also use more memory.");
    console::newline();
    console::println("The default size is 64MB per logical path. You may wish to increase this");
    console::println("value if there are multiple physical drives under each logical path.");
    console::newline();
    console::println("Enter the buffer size for each path: (e.g. 64MB, 128MB, etc...)");
    console::write("Bytes: ");
    settings.set_buffer_per_file(console::read_bytes('T'));
}

void act(RaidSettings& settings, std::int64_t option) {
    switch (option) {
        case 1:
            report(settings.set_raid0({""}));
            break;
        case 2:
            ask_raid0(settings);
            break;
        case 3:
            ask_raid3(settings);
            break;
        case 4:
            ask_group(settings);
            break;
        case 5:
            ask_path(settings);
            break;
        case 6:
            ask_buffer_size(settings);
            break;
        default:
            settings.clear();
    }
}

bool is_option(const std::string& argument) {
    return argument.starts_with('-');
}

std::string take_word(kelvara::CommandLine& command_line) {
    if (command_line.has_more() && is_option(command_line.current())) {
        throw CommandLine::CommandLineException("Expected more parameters.");
    }
    return command_line.take_argument();
}

}  // namespace

void edit_raid_settings(RaidSettings& settings, std::optional<std::uint64_t> bytes_per_group) {
    for (;;) {
        print_raid_settings(settings, bytes_per_group);
        const std::int64_t option = ask_option(settings);
        console::newline();
        if (option == 0) return;
        act(settings, option);
        console::newline();
    }
}

std::string read_raid_arguments(RaidSettings& settings, std::string mode,
                                kelvara::CommandLine& command_line) {
    if (mode.empty()) mode = take_word(command_line);
    if (mode != "raid0" && mode != "raid3") return "Unrecognized mode";
    std::vector<std::string> folders{take_word(command_line)};
    while (command_line.has_more() && !is_option(command_line.current())) {
        folders.push_back(command_line.take_argument());
    }
    return mode == "raid0" ? settings.set_raid0(folders) : settings.set_raid3(folders);
}

}  // namespace qmp
