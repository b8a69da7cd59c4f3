#include "options.h"

#include <cstdio>

#include "support/arguments.h"

namespace bench {
Options parse_options(int argc, char** argv) {
    Options options;
    options.parts = all_parts;
    read_arguments(argc, argv, {{"--help", [&] { options.help = true; }}},
                   {{"--parts", [&](auto value) { options.parts = chosen(items(value), all_parts, "part"); }},
                    {"--tasks", [&](auto value) { options.tasks = numbers(value); }},
                    {"--sizes", [&](auto value) { options.sizes = numbers(value); }},
                    {"--rounds", [&](auto value) { options.rounds = number(value); }},
                    {"--product", [&](auto value) { options.product = number(value); }},
                    {"--budget", [&](auto value) { options.budget = seconds(value); }}});
    return options;
}

void print_help() {
    std::printf(
        "memory_bench: how fast the allocators reserve and fill the large heap, and what huge pages bring.\n"
        "\n"
        "  --parts=LIST      of heaps,product (both)\n"
        "  --tasks=LIST      blocks of the fill, threads of the interleaving, tasks of the product (1,2)\n"
        "  --sizes=LIST      MiB of a heap (64,4096)\n"
        "  --rounds=N        for one rate, of which the median counts (5)\n"
        "  --product=WORDS   of each operand (1e7)\n"
        "  --budget=SECONDS  for one line of products (20); at least three rounds are measured in any case\n"
        "  --help\n"
        "\n"
        "A quick look: memory_bench --sizes=16 --product=1e5 --budget=0.2\n");
}

}  // namespace bench
