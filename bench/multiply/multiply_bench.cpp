// The multiplication engine's bench table: one command prints all of it (--help).
#include <cstdio>
#include <stdexcept>
#include <string>

#include "memory_table.h"
#include "options.h"
#include "product_tables.h"
#include "step_scan.h"
#include "support/machine.h"
#include "support/timing.h"

namespace {

void print_head(const bench::Options& options) {
    bench::print_machine();
    std::printf("Levels:    ");
    for (const std::string& level : options.levels) std::printf(" %s", level.c_str());
    std::printf("\nTimes:      medians of %s, alternating with GMP's; GMP/ours above 1: ours is faster\n",
                options.processor_time ? "the process's own time" : "wall-clock time");
}

// False when a product differs from GMP's.
bool print_parts(const bench::Options& options) {
    bool equal = true;
    for (const std::string& part : options.parts) {
        if (part == "products") equal &= bench::print_products(options);
        if (part == "squares") equal &= bench::print_squares(options);
        if (part == "unbalanced") equal &= bench::print_unbalanced(options);
        if (part == "scratch") bench::print_scratch(options);
        if (part == "steps") bench::print_steps(options);
    }
    return equal;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const bench::Options options = bench::parse_options(argc, argv);
        if (options.help) {
            bench::print_help();
            return 0;
        }
        bench::use_processor_time(options.processor_time);
        print_head(options);
        if (!print_parts(options)) {
            std::printf("\nProducts differ from GMP's.\n");
            return 1;
        }
    } catch (const std::logic_error& e) {  // of the options
        std::fprintf(stderr, "multiply_bench: %s\n", e.what());
        return 2;
    }
    return 0;
}
