#include "options.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <string_view>

#include "constant_name.h"
#include "rivals.h"
#include "support/arguments.h"

namespace bench {
namespace {

constexpr std::uint64_t growth_begins = 1'000'000;

void sort_out(std::vector<std::uint64_t>& list) {
    std::sort(list.begin(), list.end());
    list.erase(std::unique(list.begin(), list.end()), list.end());
}

// 1, 2.5, 5, 10, 25, ... million, as far as the longest of the list.
void fill_in(std::vector<std::uint64_t>& digits) {
    const std::uint64_t longest = digits.back();
    for (std::uint64_t power = growth_begins; power <= longest; power *= 10) {
        for (const std::uint64_t size : {power, power / 2 * 5, 5 * power}) {
            if (size <= longest) digits.push_back(size);
        }
    }
    sort_out(digits);
}

std::vector<std::string> constants(std::string_view list) {
    return list == "all" ? every_constant() : items(list);
}

}  // namespace

Options parse_options(int argc, char** argv) {
    Options options;
    options.levels = {supported_levels().front()};
    read_arguments(
        argc, argv,
        {{"--growth", [&] { options.growth = true; }},
         {"--breakdown", [&] { options.breakdown = true; }},
         {"--help", [&] { options.help = true; }}},
        {{"--digits", [&](auto value) { options.digits = numbers(value); }},
         {"--tasks", [&](auto value) { options.tasks = numbers(value); }},
         {"--constants", [&](auto value) { options.constants = constants(value); }},
         {"--algorithms", [&](auto value) { options.algorithms = items(value); }},
         {"--levels",
          [&](auto value) { options.levels = chosen(items(value), supported_levels(), "level"); }},
         {"--rivals",
          [&](auto value) { options.rivals = chosen(items(value), rival_libraries(), "library"); }},
         {"--runs", [&](auto value) { options.runs = number(value); }},
         {"--folder", [&](auto value) { options.folder = value; }}});
    sort_out(options.digits);
    sort_out(options.tasks);
    if (options.growth) fill_in(options.digits);
    return options;
}

void print_help() {
    std::printf(
        "computation_bench: whole computations, from \"Begin Computation\" to the digit file written and\n"
        "verified, beside one product of 10^6 x 10^6 words by GMP in the same run.\n"
        "\n"
        "  --digits=LIST      decimal digits, as 1e6,25e6 (these)\n"
        "  --tasks=LIST       task counts (1,2)\n"
        "  --constants=LIST   keys of constants, as pi,log:10 (pi); all\n"
        "  --algorithms=LIST  keywords, as chudnovsky,exp(1) (the first one of each constant); all\n"
        "  --levels=LIST      instruction-set levels, as \"AVX-512,AVX2\" (the best one)\n"
        "  --rivals=LIST      the binary values by other libraries: arb,mpfr (none); MPFR takes very long\n"
        "  --runs=N           runs of each computation, of which the median counts (3)\n"
        "  --folder=PATH      where the digit files go, one at a time (a temporary folder)\n"
        "  --growth           fills the digits up with 1, 2.5, 5, 10, 25, ... million below the largest\n"
        "  --breakdown        the time by phase, the series on one task by kind of work, and the Newton\n"
        "                     iterations in products, at the largest size\n"
        "  --help\n"
        "\n"
        "A quick look: computation_bench --digits=1e6 --runs=1 --breakdown\n");
}

}  // namespace bench
