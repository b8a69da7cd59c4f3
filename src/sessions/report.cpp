#include "sessions/report.h"

#include <algorithm>

#include "console/console.h"
#include "console/format.h"
#include "platform/os/threads.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

// One utilisation line: user time, and kernel time where it can be told.
void print_utilization_line(const char* label, double user, double kernel) {
    console::write(label, 'w');
    console::print_right(8, console::format_fixed(user, 2), 'Y');
    console::write(" %");
    if (kernel >= 0.0) {
        console::write("  +  ", 'w');
        console::print_right(6, console::format_fixed(kernel, 2), 'Y');
        console::write(" % kernel overhead");
    }
    console::println("");
    console::reset_color();
}

void print_files(const std::vector<WrittenFile>& files) {
    for (const WrittenFile& file : files) {
        console::print_label_line(file.complete ? "Digit File" : "Incomplete Digit File", file.path,
                                  file.complete ? 'T' : 'R');
    }
}

}  // namespace

Utilization Utilization::between(const qmp::CpuTimePoint& start, const qmp::CpuTimePoint& end,
                                 std::uint64_t cores) {
    Utilization result;
    result.cores = std::max<std::uint64_t>(cores, 1);
    const double wall = qmp::seconds_between(end.wall, start.wall);
    if (wall <= 0.0) return result;
    result.user_percent = (end.user - start.user) * 100.0 / wall;
    result.kernel_percent = (end.kernel - start.kernel) * 100.0 / wall;
    result.measured = result.user_percent > 0.0;
    return result;
}

void print_utilization(const Utilization& utilization) {
    constexpr const char* utilization_label = "CPU Utilization:        ";
    constexpr const char* efficiency_label = "Multi-core Efficiency:  ";
    if (!utilization.measured) {
        console::println(std::string(utilization_label) + "Too Fast to Measure");
        console::println(std::string(efficiency_label) + "Too Fast to Measure");
        return;
    }
    const double cores = static_cast<double>(utilization.cores);
    print_utilization_line(utilization_label, utilization.user_percent, utilization.kernel_percent);
    print_utilization_line(efficiency_label, utilization.user_percent / cores,
                           utilization.kernel_percent / cores);
}

void print_last_digits(const std::string& digits, std::uint64_t last_position) {
    constexpr std::size_t line_digits = 50;
    constexpr std::size_t group_digits = 10;
    console::println("Last Digits:  ");
    for (std::size_t line = 0; line < digits.size(); line += line_digits) {
        const std::size_t end = std::min(line + line_digits, digits.size());
        std::string text;
        for (std::size_t group = line; group < end; group += group_digits) {
            text += digits.substr(group, std::min(group_digits, end - group)) + " ";
        }
        console::write(text, 'Y');
        console::println(" :  " + console::format_separated(last_position - (digits.size() - end)), 'G');
    }
    console::reset_color();
}

void print_report(const SessionRecord& record) {
    console::newline();
    console::print_column_line(12, "Start Time:", record.start_time, 'Y');
    console::print_column_line(12, "End Time:", record.end_time, 'Y');
    console::newline();
    console::write("Total Computation Time:     ");
    console::println(console::format_time(record.total_seconds()), 'Y');
    console::reset_color();
    console::write("Start-to-End Wall Time:     ");
    console::println(console::format_time(record.wall_seconds()), 'Y');
    console::reset_color();
    print_utilization(Utilization::between(record.started, record.ended, qmp::os::active_processors()));
    print_last_digits(record.decimal.last_digits, record.decimal.digits);
    console::newline();
    console::print_label_line("Binary Hash: Floor(bin * 10^dec) mod (2^61 - 1)",
                              console::format_int(record.decimal.hash), 'G');
    print_files(record.files);
    console::newline();
}

}  // namespace kelvara
