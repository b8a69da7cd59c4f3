#include "options.h"

#include <cstdio>

#include "support/arguments.h"

namespace bench {

Options parse_options(int argc, char** argv) {
    Options options;
    options.levels = supported_levels();
    read_arguments(argc, argv, {{"--help", [&] { options.help = true; }}},
                   {{"--levels",
                     [&](auto value) { options.levels = chosen(items(value), supported_levels(), "level"); }},
                    {"--words", [&](auto value) { options.words = numbers(value); }},
                    {"--budget", [&](auto value) { options.budget = seconds(value); }}});
    return options;
}

void print_help() {
    std::printf(
        "digits_bench: digits to words and back, their characters and their counts, beside memcpy of as "
        "many\n"
        "bytes as there are digits. Every level of kernels that the processor runs.\n"
        "\n"
        "  --levels=LIST     of those that this machine runs (all)\n"
        "  --words=LIST      that the digits are packed in (16384,16777216: in the cache and in memory)\n"
        "  --budget=SECONDS  for one line (1); at least three rounds are measured in any case\n"
        "  --help\n"
        "\n"
        "A quick look: digits_bench --words=1e5 --budget=0.1\n");
}

}  // namespace bench
