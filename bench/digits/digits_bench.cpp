// Packing, unpacking and counting digits, beside memcpy in the same run (--help).
#include <cstdio>
#include <stdexcept>

#include "codec_table.h"
#include "options.h"
#include "support/machine.h"

int main(int argc, char** argv) {
    try {
        const bench::Options options = bench::parse_options(argc, argv);
        if (options.help) {
            bench::print_help();
            return 0;
        }
        bench::print_processor();
        bench::print_codecs(options);
        return 0;
    } catch (const std::logic_error& e) {  // of the options
        std::fprintf(stderr, "digits_bench: %s\n", e.what());
        return 2;
    }
}
