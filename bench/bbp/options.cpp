#include "options.h"

#include <cstdio>
#include <stdexcept>

#include "constants/bbp/settings.h"
#include "support/arguments.h"

namespace bench {
namespace {

namespace bbp = kelvara::bbp;

std::vector<std::uint64_t> offsets_of(std::string_view text) {
    std::vector<std::uint64_t> offsets = numbers(text);
    for (const std::uint64_t offset : offsets) {
        // Below this, blocks from the middle of the sum have small terms.
        constexpr std::uint64_t least = 1'000'000;
        if (offset < least || offset > bbp::largest_offset) {
            throw std::invalid_argument("Not an offset from 1000000 to 2^46 - 1: " + std::to_string(offset));
        }
    }
    return offsets;
}

std::uint64_t digits_of(std::string_view text) {
    const std::uint64_t digits = number(text);
    if (digits < bbp::smallest_digits || digits > bbp::largest_digits) {
        throw std::invalid_argument("Not a number of digits from 8 to 1048576: " + std::string(text));
    }
    return digits;
}

}  // namespace

Options parse_options(int argc, char** argv) {
    Options options;
    const std::vector<std::string> all = supported_levels();
    options.levels = all;
    read_arguments(argc, argv,
                   {{"--help", [&] { options.help = true; }},
                    {"--processor-time", [&] { options.processor_time = true; }}},
                   {{"--offsets", [&](auto value) { options.offsets = offsets_of(value); }},
                    {"--digits", [&](auto value) { options.digits = digits_of(value); }},
                    {"--levels", [&](auto value) { options.levels = chosen(items(value), all, "level"); }},
                    {"--budget", [&](auto value) { options.budget = seconds(value); }}});
    return options;
}

void print_help() {
    std::printf(
        "bbp_bench: terms of the digit extractor per second, beside integer arithmetic in the same run.\n"
        "\n"
        "  --offsets=LIST     hexadecimal offsets, 1e6 to 2^46 - 1 (1e9,1e12)\n"
        "  --digits=N         digits to compute, 8 to 1048576 (32)\n"
        "  --levels=LIST      instruction-set levels, as \"AVX2,scalar\" (all that run here)\n"
        "  --budget=SECONDS   for one formula and offset (3); at least three rounds are measured in any "
        "case\n"
        "  --processor-time   the process's own time instead of the wall's, where others work, too\n"
        "  --help\n"
        "\n"
        "A quick look: bbp_bench --offsets=1e9 --budget=0.3\n");
}

}  // namespace bench
