// The tables of all computations, as Markdown.
#pragma once

#include <string>
#include <vector>

#include "computation.h"

namespace bench {

struct Measured {
    Computation computation;
    std::string level;
    Result result;

    // "pi (chudnovsky), 1,000,000 digits, 2 tasks, AVX2".
    std::string title() const;
};

// The main table, a line after each computation.
void print_table_head();
void print_line(const Measured& measured);
// How time and memory grow with the digits of what was measured at several sizes.
void print_growth(const std::vector<Measured>& all);

}  // namespace bench
