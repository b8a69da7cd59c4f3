// What the command line chooses of the benchmark.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

struct Options {
    std::vector<std::string> frameworks;  // type keys, in menu order
    std::vector<std::uint64_t> tasks = {2, 16, 17, 1000};
    std::uint64_t depth = 10;  // of the nested halving
    double budget = 3;         // seconds for one line; at least three rounds are measured whatever they take
    bool help = false;
};

// std::invalid_argument with a message for the user.
Options parse_options(int argc, char** argv);
void print_help();

}  // namespace bench
