#include "product_tables.h"

#include <gmp.h>

#include <algorithm>
#include <cstdio>

#include "multiply/instruction_levels.h"
#include "multiply/multiply.h"
#include "support/timing.h"
#include "support/workspace.h"

namespace bench {
namespace {

mp_size_t limbs(std::uint64_t n) {
    return static_cast<mp_size_t>(n);
}

struct Product {
    Words a, b, ours, gmp;

    Product(std::uint64_t la, std::uint64_t lb)
        : a(random_words(la, la)), b(random_words(lb, lb + 1)), ours(la + lb), gmp(la + lb) {}
};

// One kind of product: how long its shorter operand is, and how the two rivals form it.
struct Kind {
    const char* title;
    std::uint64_t (*shorter)(std::uint64_t n);
    void (*run)(const qmp::MultiplyContext& context, Product& p);
    void (*run_gmp)(Product& p);
};

void multiply(const qmp::MultiplyContext& context, Product& p) {
    qmp::multiply(context, p.ours.data(), p.a.data(), p.a.size(), p.b.data(), p.b.size());
}

constexpr Kind products = {
    "Products, n x n words (GMP: mpn_mul_n)", [](std::uint64_t n) { return n; }, multiply,
    [](Product& p) { mpn_mul_n(p.gmp.data(), p.a.data(), p.b.data(), limbs(p.a.size())); }};
constexpr Kind squares = {"Squares, n words (GMP: mpn_sqr)", [](std::uint64_t n) { return n; },
                          [](const qmp::MultiplyContext& context, Product& p) {
                              qmp::square_upper(context, p.ours.data(), 0, 2 * p.a.size(), p.a.data(),
                                                p.a.size());
                          },
                          [](Product& p) { mpn_sqr(p.gmp.data(), p.a.data(), limbs(p.a.size())); }};
constexpr Kind unbalanced = {
    "Unbalanced products, n x n/10 words (GMP: mpn_mul)", [](std::uint64_t n) { return n / 10; }, multiply,
    [](Product& p) { mpn_mul(p.gmp.data(), p.a.data(), limbs(p.a.size()), p.b.data(), limbs(p.b.size())); }};

// One line; false when the products differ.
bool print_line(const Kind& kind, const Options& options, const Workspace* workspace, std::uint64_t n) {
    const std::uint64_t shorter = std::max<std::uint64_t>(kind.shorter(n), 1);
    std::printf("%10llu  ", static_cast<unsigned long long>(n));
    if (!workspace || n + shorter > reach()) {
        std::printf("not reached\n");
        return true;
    }
    Product p(n, shorter);
    const Pair times =
        measure([&] { kind.run(workspace->context(), p); }, [&] { kind.run_gmp(p); }, options.budget);
    std::printf("%-4s %14.3f %14.3f %10.2f%s\n", qmp::basic_table_64().get_algorithm(n + shorter).key,
                times.ours * 1e6, times.rival * 1e6, times.rival / times.ours,
                p.ours == p.gmp ? "" : "  DIFFERENT");
    std::fflush(stdout);
    return p.ours == p.gmp;
}

// The workspace of all lengths of one table, or none when the dispatch reaches none of them.
std::unique_ptr<Workspace> workspace_for(const Kind& kind, const Options& options, std::uint64_t tasks) {
    std::uint64_t longest = 0;
    for (std::uint64_t n : options.sizes) {
        const std::uint64_t length = n + std::max<std::uint64_t>(kind.shorter(n), 1);
        if (length <= reach()) longest = std::max(longest, length);
    }
    return longest == 0 ? nullptr : std::make_unique<Workspace>(longest, tasks);
}

bool print_tables(const Kind& kind, const Options& options) {
    bool equal = true;
    for (const std::string& level : options.levels) {
        qmp::force_level(level);
        for (std::uint64_t tasks : options.tasks) {
            std::printf("\n%s; %s, %llu task%s\n", kind.title, level.c_str(),
                        static_cast<unsigned long long>(tasks), tasks == 1 ? "" : "s");
            std::printf("         n  key    Kelvara us         GMP us   GMP/ours\n");
            const std::unique_ptr<Workspace> workspace = workspace_for(kind, options, tasks);
            for (std::uint64_t n : options.sizes) equal &= print_line(kind, options, workspace.get(), n);
        }
    }
    qmp::force_level("");
    return equal;
}

}  // namespace

bool print_products(const Options& options) {
    return print_tables(products, options);
}

bool print_squares(const Options& options) {
    return print_tables(squares, options);
}

bool print_unbalanced(const Options& options) {
    return print_tables(unbalanced, options);
}

}  // namespace bench
