#include "memory_table.h"

#include <algorithm>
#include <cstdio>

#include "multiply/instruction_levels.h"
#include "multiply/multiply.h"
#include "support/workspace.h"

namespace bench {
namespace {

constexpr qmp::Word mark = 0xa5c3f00d5eed1234;

// Bytes from the start of the scratch to the last word that an n x n product changed.
std::uint64_t bytes_used(const Workspace& workspace, std::uint64_t n) {
    const Words a = random_words(n, n), b = random_words(n, n + 1);
    Words product(2 * n);
    qmp::Word* scratch = workspace.context().scratch;
    std::uint64_t used = workspace.scratch_words();
    std::fill_n(scratch, used, mark);
    qmp::multiply(workspace.context(), product.data(), a.data(), n, b.data(), n);
    while (used > 0 && scratch[used - 1] == mark) --used;
    return 8 * used;
}

void print_line(std::uint64_t n, std::uint64_t tasks) {
    std::printf("%10llu  ", static_cast<unsigned long long>(n));
    if (2 * n > reach()) {
        std::printf("not reached\n");
        return;
    }
    const Workspace workspace(2 * n, tasks);
    const auto words = static_cast<double>(2 * n);
    const auto promised = static_cast<double>(qmp::iPsize(2 * n, tasks));
    const auto used = static_cast<double>(bytes_used(workspace, n));
    std::printf("%-4s %14.0f %9.2f %14.0f %9.2f %7.2f %10.2f\n",
                qmp::basic_table_64().get_algorithm(2 * n).key, promised, promised / words, used,
                used / words, promised == 0 ? 0 : used / promised,
                static_cast<double>(qmp::TwiddleSet::bytes_needed(2 * n)) / words);
    std::fflush(stdout);
}

}  // namespace

void print_scratch(const Options& options) {
    qmp::force_level(options.levels.empty() ? "" : options.levels.front());
    for (std::uint64_t tasks : options.tasks) {
        std::printf("\nScratch of n x n products, %llu task%s; per word of the product\n",
                    static_cast<unsigned long long>(tasks), tasks == 1 ? "" : "s");
        std::printf(
            "         n  key    iPsize bytes  per word     used bytes  per word    used   twiddles\n");
        for (std::uint64_t n : options.sizes) print_line(n, tasks);
    }
    qmp::force_level("");
}

}  // namespace bench
