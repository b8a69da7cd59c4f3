// What the command line chooses of the benchmark.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

struct Options {
    std::vector<std::string> tests;   // codes, in the catalogue's order
    std::vector<std::string> levels;  // of the instruction sets
    std::vector<std::uint64_t> threads = {1, 2};
    std::vector<std::uint64_t> memory = {4, 1024};  // of all threads, in MiB
    double seconds = 3;                             // of each test
    bool help = false;
};

// std::invalid_argument with a message for the user.
Options parse_options(int argc, char** argv);
void print_help();

}  // namespace bench
