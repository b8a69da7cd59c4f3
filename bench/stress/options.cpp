#include "options.h"

#include <cstdio>

#include "multiply/instruction_levels.h"
#include "stress/catalogue.h"
#include "support/arguments.h"

namespace bench {

Options parse_options(int argc, char** argv) {
    std::vector<std::string> codes;
    for (const kelvara::StressTestEntry& entry : kelvara::stress_tests()) codes.emplace_back(entry.code);
    Options options;
    options.tests = codes;
    options.levels = {qmp::name_of(qmp::current_level())};
    read_arguments(argc, argv, {{"--help", [&] { options.help = true; }}},
                   {{"--tests", [&](auto value) { options.tests = chosen(items(value), codes, "test"); }},
                    {"--levels",
                     [&](auto value) { options.levels = chosen(items(value), supported_levels(), "level"); }},
                    {"--threads", [&](auto value) { options.threads = numbers(value); }},
                    {"--memory", [&](auto value) { options.memory = numbers(value); }},
                    {"--seconds", [&](auto value) { options.seconds = seconds(value); }}});
    return options;
}

void print_help() {
    std::printf(
        "stress_bench: how much of the machine each of the stress tester's tests keeps busy.\n"
        "\n"
        "  --tests=LIST      of BKT,FFT,N32,N64,HNT,VST (all)\n"
        "  --levels=LIST     instruction sets (the one that the program chooses)\n"
        "  --threads=LIST    (1,2)\n"
        "  --memory=LIST     MiB of all threads together (4,1024)\n"
        "  --seconds=NUMBER  of each test (3)\n"
        "  --help\n"
        "\n"
        "A quick look: stress_bench --memory=4 --seconds=0.1\n");
}

}  // namespace bench
