// What the command line chooses of the benchmark.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

struct Options {
    std::vector<std::string> parts;   // of all_parts, in that order
    std::vector<std::string> levels;  // names of instruction-set levels that this machine runs
    std::vector<std::uint64_t> tasks = {1, 2};
    std::vector<std::uint64_t> sizes = {10, 50, 500, 1000, 5000, 10000, 100000, 1000000, 10000000};
    double budget = 3;  // seconds for one figure; at least three rounds are measured whatever they take
    bool processor_time = false;
    bool help = false;
};

inline const std::vector<std::string> all_parts = {"products", "squares", "unbalanced", "scratch", "steps"};

// std::invalid_argument with a message for the user.
Options parse_options(int argc, char** argv);
void print_help();

}  // namespace bench
