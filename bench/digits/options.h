// What the command line chooses of the benchmark.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

struct Options {
    std::vector<std::string> levels;                          // of supported_levels()
    std::vector<std::uint64_t> words = {16'384, 16'777'216};  // that the digits are packed in
    double budget = 1;                                        // seconds for a line
    bool help = false;
};

// std::invalid_argument with a message for the user.
Options parse_options(int argc, char** argv);
void print_help();

}  // namespace bench
