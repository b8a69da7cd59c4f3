#include "tables.h"

#include <cmath>
#include <cstdio>

#include "console/format.h"

namespace bench {
namespace {

constexpr double mebibyte = 1048576.0;

std::string separated(std::uint64_t value) {
    return qmp::console::format_separated(value);
}

double mebibytes(std::uint64_t bytes) {
    return static_cast<double>(bytes) / mebibyte;
}

bool same_kind(const Measured& a, const Measured& b) {
    return a.computation.name() == b.computation.name() && a.computation.tasks == b.computation.tasks &&
           a.level == b.level;
}

// The measurement of the same kind with the next fewer digits; null when there is none.
const Measured* next_smaller(const std::vector<Measured>& all, const Measured& measured) {
    const Measured* found = nullptr;
    for (const Measured& other : all) {
        const std::uint64_t digits = other.computation.digits;
        if (!same_kind(other, measured) || digits >= measured.computation.digits) continue;
        if (!found || digits > found->computation.digits) found = &other;
    }
    return found;
}

}  // namespace

std::string Measured::title() const {
    return computation.name() + ", " + separated(computation.digits) + " digits, " +
           std::to_string(computation.tasks) + (computation.tasks == 1 ? " task, " : " tasks, ") + level;
}

void print_table_head() {
    std::printf(
        "\n| constant | level | digits | tasks | seconds | U, s | in U | value alone in U | reserve s | "
        "twiddle s | reserved "
        "MiB | "
        "of it used MiB | twiddle MiB | resident less reserved MiB | conversion, writing, verification |\n"
        "|---|---|---|---|---|---|---|---|---|---|---|---|---|---|---|\n");
}

void print_line(const Measured& measured) {
    const Computation& c = measured.computation;
    const Figures& f = measured.result.median;
    std::printf(
        "| %s | %s | %s | %llu | %.3f | %.4f | %.3f | %.3f | %.3f | %.3f | %.1f | %.1f | %.1f | %.1f | %.1f "
        "%% |\n",
        c.name().c_str(), measured.level.c_str(), separated(c.digits).c_str(),
        static_cast<unsigned long long>(c.tasks), f.seconds, f.unit, f.in_units(), f.value_in_units(),
        f.reserving, f.twiddles, mebibytes(f.reserved), mebibytes(f.used), mebibytes(f.twiddle_bytes),
        mebibytes(f.resident) - mebibytes(f.reserved), 100 * f.output / f.seconds);
    std::fflush(stdout);
}

void print_growth(const std::vector<Measured>& all) {
    std::printf(
        "\nGrowth: time ~ digits^exponent from the next smaller size.\n\n"
        "| constant | level | tasks | digits | seconds | ns per digit | exponent | reserved bytes per digit "
        "| "
        "of it used |\n|---|---|---|---|---|---|---|---|---|\n");
    for (const Measured& measured : all) {
        const Computation& c = measured.computation;
        const Figures& f = measured.result.median;
        const auto digits = static_cast<double>(c.digits);
        std::string exponent;
        if (const Measured* before = next_smaller(all, measured)) {
            exponent = qmp::console::format_fixed(
                std::log(f.seconds / before->result.median.seconds) /
                    std::log(digits / static_cast<double>(before->computation.digits)),
                3);
        }
        std::printf("| %s | %s | %llu | %s | %.3f | %.2f | %s | %.2f | %.2f |\n", c.name().c_str(),
                    measured.level.c_str(), static_cast<unsigned long long>(c.tasks),
                    separated(c.digits).c_str(), f.seconds, 1e9 * f.seconds / digits, exponent.c_str(),
                    static_cast<double>(f.reserved) / digits, static_cast<double>(f.used) / digits);
    }
}

}  // namespace bench
