// The command line of bbp_bench.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace bench {

struct Options {
    bool help = false;
    bool processor_time = false;
    std::vector<std::uint64_t> offsets = {1'000'000'000, 1'000'000'000'000};
    std::uint64_t digits = 32;
    std::vector<std::string> levels;
    double budget = 3;
};

Options parse_options(int argc, char** argv);
void print_help();

}  // namespace bench
