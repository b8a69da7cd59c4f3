// The allocators of the large heap: rates of reserving and filling, and the gain of huge pages (--help).
#include <cstdio>
#include <stdexcept>
#include <string>

#include "heap_table.h"
#include "huge_page_gain.h"
#include "options.h"
#include "platform/topology.h"
#include "support/machine.h"

namespace {

bool print_parts(const bench::Options& options) {
    bool complete = true;
    for (const std::string& part : options.parts) {
        if (part == "heaps") complete &= bench::print_heaps(options);
        if (part == "product") complete &= bench::print_gain(options);
    }
    return complete;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const bench::Options options = bench::parse_options(argc, argv);
        if (options.help) {
            bench::print_help();
            return 0;
        }
        bench::print_machine();
        qmp::numa_table();  // prints what it finds, which would stand in the middle of a table
        return print_parts(options) ? 0 : 1;
    } catch (const std::logic_error& e) {  // of the options
        std::fprintf(stderr, "memory_bench: %s\n", e.what());
        return 2;
    } catch (const std::runtime_error& e) {  // of the memory
        std::fprintf(stderr, "memory_bench: %s\n", e.what());
        return 1;
    }
}
