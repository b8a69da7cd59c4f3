#include "stress/stress_report.h"

#include <array>
#include <string>

#include "console/console.h"
#include "console/format.h"

namespace kelvara {
namespace {

namespace console = qmp::console;

std::string counted(std::uint64_t n, const char* one, const char* many) {
    return console::format_separated(n) + " " + (n == 1 ? one : many);
}

void print_outcome(std::uint64_t errors) {
    if (errors == 0) {
        console::write("Passed", 'G');
    } else {
        console::write("Failed", 'R');
        console::write(" (" + counted(errors, "error", "errors") + ")", 'R');
    }
}

// What the machine did, in all and per second.
void print_load(const StressReport& report, const ProductWork& work, double peak) {
    const auto products = static_cast<double>(report.products);
    console::println("    " + counted(report.products, "product", "products") + " of " +
                         console::format_separated(report.size.product_words()) + " words on " +
                         counted(report.threads, "thread", "threads"),
                     'w');
    if (report.seconds <= 0) return;
    const double rate = products / report.seconds;
    const auto words = static_cast<double>(report.size.product_words());
    console::println("    " + large_number(rate * words) + " words/s, at least " +
                         large_number(rate * work.bytes) + " bytes/s moved",
                     'w');
    if (work.operations <= 0) return;
    std::string line =
        "    " + large_number(rate * work.operations) + " floating-point operations/s (estimated)";
    if (peak > 0) {
        line += ", " + console::format_fixed(100 * rate * work.operations / peak, 1) + "% of the peak";
    }
    console::println(line, 'w');
}

}  // namespace

std::string large_number(double value) {
    constexpr std::array<const char*, 5> units = {"", " thousand", " million", " billion", " trillion"};
    std::size_t unit = 0;
    while (value >= 1000 && unit + 1 < units.size()) {
        value /= 1000;
        ++unit;
    }
    return console::format_fixed(value, 2) + units[unit];
}

void print_insufficient_memory(const StressTestEntry& entry) {
    console::write(std::string(entry.name) + " Test: ", 'w');
    console::println("Insufficient memory to run this test.", 'R');
    console::reset_color();
}

void print_report(const StressTestEntry& entry, const StressReport& report, double peak) {
    console::write(std::string(entry.name) + " Test: ", 'w');
    print_outcome(report.errors);
    console::write("  Test Time: ", 'w');
    console::println(console::format_time(report.seconds), 'T');
    console::reset_color();
    print_load(report, entry.test->work(report.size.operand_words()), peak);
    console::reset_color();
}

}  // namespace kelvara
