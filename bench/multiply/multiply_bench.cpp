// The multiplication engine's bench table: one command prints all of it (--help).
#include <cpuid.h>
#include <gmp.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <stdexcept>
#include <string>
#include <thread>

#include "memory_table.h"
#include "options.h"
#include "product_tables.h"
#include "step_scan.h"
#include "timing.h"

namespace {

std::string processor_name() {
    unsigned int registers[12] = {};
    for (unsigned int i = 0; i < 3; ++i) {
        unsigned int* r = registers + 4 * i;
        if (!__get_cpuid(0x80000002 + i, r, r + 1, r + 2, r + 3)) return "unknown";
    }
    char name[sizeof registers + 1] = {};
    std::memcpy(name, registers, sizeof registers);
    return name;
}

void print_head(const bench::Options& options) {
    const std::time_t seconds = std::time(nullptr);
    char date[32];
    std::strftime(date, sizeof date, "%Y-%m-%d %H:%M UTC", std::gmtime(&seconds));
    std::printf("Date:       %s\n", date);
    std::printf("Processor:  %s, %u logical processors\n", processor_name().c_str(),
                std::thread::hardware_concurrency());
#ifdef __clang__
    std::printf("Compiler:   clang %s\n", __VERSION__);
#else
    std::printf("Compiler:   g++ %s\n", __VERSION__);
#endif
    std::printf("Rival:      GMP %s, one thread\n", gmp_version);
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
