#include "sessions/report.h"

#include "console/console.h"
#include "console/format.h"
#include "platform/os/threads.h"
#include "sessions/last_digits.h"
#include "sessions/utilization.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

void print_files(const std::vector<WrittenFile>& files) {
    for (const WrittenFile& file : files) {
        const bool one = file.files <= 1;
        const std::string label = one ? "Digit File" : "Digit Files";
        const std::string folder = file.path.substr(0, file.path.find_last_of("/\\") + 1);
        console::print_label_line(file.complete ? label : "Incomplete " + label,
                                  one ? file.path : console::format_separated(file.files) + " in " + folder,
                                  file.complete ? 'T' : 'R');
    }
}

}  // namespace

void print_last_digits(const std::string& digits, std::uint64_t last_position) {
    console::println("Last Digits:  ");
    for (const DigitLine& line : last_digit_lines(digits, last_position)) {
        console::write(line.digits + " ", 'Y');
        console::println(" :  " + console::format_separated(line.position), 'G');
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
