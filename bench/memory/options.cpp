#include "options.h"

#include <cstdio>
#include <stdexcept>

#include "support/arguments.h"

namespace bench {
namespace {

std::uint64_t number(std::string_view value) {
    const std::vector<std::uint64_t> list = numbers(value);
    if (list.size() != 1) throw std::invalid_argument("Not one number: " + std::string(value));
    return list.front();
}

}  // namespace

Options parse_options(int argc, char** argv) {
    Options options;
    options.parts = all_parts;
    for (int i = 1; i < argc; ++i) {
        const auto [name, value] = Argument(argv[i]);
        if (name == "--help" && value.empty()) {
            options.help = true;
        } else if (value.empty()) {
            throw std::invalid_argument("Unknown option: " + std::string(argv[i]));
        } else if (name == "--parts") {
            options.parts = chosen(items(value), all_parts, "part");
        } else if (name == "--tasks") {
            options.tasks = numbers(value);
        } else if (name == "--sizes") {
            options.sizes = numbers(value);
        } else if (name == "--rounds") {
            options.rounds = number(value);
        } else if (name == "--product") {
            options.product = number(value);
        } else if (name == "--budget") {
            options.budget = std::stod(std::string(value));
        } else {
            throw std::invalid_argument("Unknown option: " + std::string(argv[i]));
        }
    }
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
