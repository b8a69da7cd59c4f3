// What the command line chooses of the benchmark.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

struct Options {
    std::vector<std::string> parts;  // of all_parts, in that order
    std::vector<std::uint64_t> tasks = {1, 2};
    std::vector<std::uint64_t> sizes = {64, 4096};  // of a heap, in MiB
    std::uint64_t rounds = 5;                       // of a heap, the median counts
    std::uint64_t product = 10'000'000;             // words of an operand
    double budget = 20;                             // seconds for a line of products
    bool help = false;
};

inline const std::vector<std::string> all_parts = {"heaps", "product"};

// std::invalid_argument with a message for the user.
Options parse_options(int argc, char** argv);
void print_help();

}  // namespace bench
