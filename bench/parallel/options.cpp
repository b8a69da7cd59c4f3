#include "options.h"

#include <cstdio>
#include <stdexcept>

#include "platform/parallel/registry.h"
#include "support/arguments.h"

namespace bench {
namespace {

// 2^depth leaves, and with a thread for each pair nearly as many threads.
constexpr std::uint64_t greatest_depth = 14;

std::uint64_t depth_of(std::string_view text) {
    const std::vector<std::uint64_t> depths = numbers(text);
    if (depths.size() != 1 || depths[0] > greatest_depth) {
        throw std::invalid_argument("Not a depth from 1 to 14: " + std::string(text));
    }
    return depths[0];
}

}  // namespace

Options parse_options(int argc, char** argv) {
    Options options;
    options.frameworks = qmp::parallelizer_keys();
    const std::vector<std::string> all = options.frameworks;
    read_arguments(
        argc, argv, {{"--help", [&] { options.help = true; }}},
        {{"--frameworks", [&](auto value) { options.frameworks = chosen(items(value), all, "framework"); }},
         {"--tasks", [&](auto value) { options.tasks = numbers(value); }},
         {"--depth", [&](auto value) { options.depth = depth_of(value); }},
         {"--budget", [&](auto value) { options.budget = seconds(value); }}});
    return options;
}

void print_help() {
    std::printf(
        "dispatch_bench: what handing out empty tasks costs, beside std::async and OpenMP in the same run.\n"
        "\n"
        "  --frameworks=LIST  type keys, as \"pushpool,spawn\" (all of this build)\n"
        "  --tasks=LIST       tasks of a range (2,16,17,1000)\n"
        "  --depth=N          of the nested halving, 1 to 14 (10)\n"
        "  --budget=SECONDS   for one line (3); at least three rounds are measured in any case\n"
        "  --help\n"
        "\n"
        "A quick look: dispatch_bench --frameworks=pushpool --tasks=2,16 --depth=4 --budget=0.1\n");
}

}  // namespace bench
