// What the command line chooses of the benchmark of whole computations.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

struct Options {
    std::vector<std::uint64_t> digits = {1'000'000, 25'000'000};
    std::vector<std::uint64_t> tasks = {1, 2};
    std::vector<std::string> constants = {"pi"};
    std::vector<std::string> algorithms;  // empty: the first one of each constant; "all"
    std::vector<std::string> levels;      // names of instruction-set levels that this machine runs
    std::vector<std::string> rivals;      // libraries to measure beside
    std::uint64_t runs = 3;
    std::string folder;  // for the digit files; empty: a folder of its own among the temporary ones
    bool growth = false;
    bool breakdown = false;
    bool help = false;
};

// std::invalid_argument with a message for the user. Digits and tasks come out in ascending order.
Options parse_options(int argc, char** argv);
void print_help();

}  // namespace bench
