#include "constants/bbp/report.h"

#include <algorithm>
#include <string>

#include "console/console.h"
#include "console/labels.h"
#include "constants/bbp/extractor.h"
#include "constants/bbp/terms.h"
#include "platform/local_time.h"
#include "platform/timers.h"

namespace kelvara::bbp {
namespace {

namespace console = qmp::console;

constexpr std::size_t digits_of_group = 16;
constexpr std::size_t digits_of_line = 4 * digits_of_group;

void print_legend(std::string_view name, console::Colour colour, std::string_view meaning) {
    constexpr std::size_t name_columns = 7;
    console::write(name, colour);
    console::println(std::string(name_columns - name.size(), ' ') + std::string(meaning), 'w');
}

// Up to 16 digits, which may have two colours.
void print_group(std::string_view group, std::uint64_t correct) {
    const std::size_t green = std::min<std::uint64_t>(correct, group.size());
    if (green > 0) console::write(group.substr(0, green), 'G');
    if (green < group.size()) console::write(group.substr(green), 'R');
}

}  // namespace

void print_task(const Settings& settings) {
    console::print_label_separated("Hexadecimal Offset", settings.offset, 'G');
    console::print_label_separated("Digits to Compute", settings.digits, 'G');
    console::print_label("Threads", console::format_separated(settings.threads), 'Y');
    console::println(settings.pin_threads ? "  (pinned to cores)" : "");
    console::newline();
    console::print_label_separated("Terms Needed",
                                   terms_needed(settings.formula, settings.offset, settings.digits), 'Y');
    console::print_label_line("Internal Precision",
                              console::format_separated(settings.precision_digits()) + " Hexadecimal Digits",
                              'Y');
    console::newline();
}

void print_digits(std::uint64_t offset, std::string_view digits, std::uint64_t correct) {
    print_legend("Green", 'G', "= Requested digits that should be correct.");
    print_legend("Red", 'R', "= Extra working precision. May not be correct.");
    console::newline();
    console::write("Hexadecimal Digits starting from: ", 'w');
    console::println("16^-" + console::format_separated(offset + 1), 'Y');
    for (std::size_t i = 0; i < digits.size(); i += digits_of_group) {
        if (i % digits_of_line != 0) console::write(" ");
        print_group(digits.substr(i, digits_of_group), correct - std::min<std::uint64_t>(correct, i));
        if ((i + digits_of_group) % digits_of_line == 0 || i + digits_of_group >= digits.size())
            console::newline();
    }
    console::println("", 'w');
}

void run_extraction(const Settings& settings) {
    const qmp::CoreTable& cores = qmp::core_table();
    print_task(settings);
    console::print_label_line("Start Time", local_time_text(), 'Y');
    console::newline();

    const qmp::CounterTimePoint start = qmp::now();
    qmp::ConsoleProgress progress;
    const std::string digits = extract_digits(settings, progress, cores);
    const double seconds = qmp::seconds_between(qmp::now(), start);

    console::newline();
    console::print_label_line("End Time", local_time_text(), 'Y');
    console::print_label_time("Total Time", seconds, 'T');
    console::newline();
    print_digits(settings.offset, digits, settings.digits);
}

}  // namespace kelvara::bbp
