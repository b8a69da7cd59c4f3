#include "options.h"

#include <cstdio>

#include "support/arguments.h"

namespace bench {

Options parse_options(int argc, char** argv) {
    Options options;
    options.parts = all_parts;
    options.levels = supported_levels();
    read_arguments(argc, argv,
                   {{"--help", [&] { options.help = true; }},
                    {"--processor-time", [&] { options.processor_time = true; }}},
                   {{"--parts", [&](auto value) { options.parts = chosen(items(value), all_parts, "part"); }},
                    {"--levels",
                     [&](auto value) { options.levels = chosen(items(value), supported_levels(), "level"); }},
                    {"--tasks", [&](auto value) { options.tasks = numbers(value); }},
                    {"--sizes", [&](auto value) { options.sizes = numbers(value); }},
                    {"--budget", [&](auto value) { options.budget = seconds(value); }}});
    return options;
}

void print_help() {
    std::printf(
        "multiply_bench: products of the engine beside GMP's, same operands, same run.\n"
        "\n"
        "  --parts=LIST      of products,squares,unbalanced,scratch,steps (all)\n"
        "  --levels=LIST     instruction-set levels, as \"AVX-512,AVX2\" (all that this machine runs)\n"
        "  --tasks=LIST      task counts (1,2)\n"
        "  --sizes=LIST      words of an operand, as 10,5000,1e6 (10 to 1e7)\n"
        "  --budget=SECONDS  for one figure (3); at least three rounds are measured in any case\n"
        "  --processor-time  the process's own time instead of the clock on the wall: for a busy machine,\n"
        "                    with one task only (several tasks' times add up)\n"
        "  --help\n"
        "\n"
        "A quick look: multiply_bench --parts=products --levels=AVX2 --tasks=1 --sizes=10,1000 "
        "--budget=0.2\n");
}

}  // namespace bench
