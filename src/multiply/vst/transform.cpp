#include "multiply/vst/transform.h"

#include "errors/check.h"
#include "errors/exception.h"
#include "multiply/twiddle_set.h"
#include "multiply/vst/levels.h"
#include "multiply/vst/transform_private.h"

namespace qmp::vst {
namespace {

const ColumnTables& covering_tables(const char* function, const Plan& plan, const MultiplyContext& context) {
    const ColumnTables* tables = context.twiddles ? context.twiddles->columns(plan.multiplier()) : nullptr;
    if (!tables || tables->layers() < plan.column_layers) {
        throw LimitExceededException(function, context.twiddles ? context.twiddles->largest_product() : 0,
                                     plan.size.capacity_bits / 64);
    }
    return *tables;
}

// As many workspaces as the tasks can use and the scratch has room for.
std::uint64_t tasks_for(const Plan& plan, const MultiplyContext& context) {
    const std::uint64_t room = (context.scratch_words - plan.shared_words()) / plan.workspace_words();
    return std::min(plan.workspaces(context.tds), room);
}

// e(angle / 2^e) for the top of a subtree.
std::uint64_t top_root(const Plan& plan, const PrimeConstants& c, std::uint64_t p, std::uint32_t subtree,
                       bool negacyclic, bool inverse) {
    const std::uint64_t* roots = inverse ? c.inverse_outer_root : c.outer_root;
    if (!negacyclic) return power_modulo(roots[plan.size.exponent], subtree, p);
    return power_modulo(roots[plan.size.exponent + 1], 2 * std::uint64_t{subtree} + plan.multiplier(), p);
}

// numbers[b] = e(f(b) / 2^layers) for b < 2^bits, f(b) the mirrored bits of b: bit i of b contributes the
// root of order 2^(layers + i + 1).
void mirrored_sequence(double* numbers, int bits, int layers, const std::uint64_t* roots, std::uint64_t p) {
    numbers[0] = 1;
    for (int i = 0; i < bits; ++i) {
        const std::uint64_t size = std::uint64_t{1} << i;
        const std::uint64_t root = roots[layers + i + 1];
        for (std::uint64_t b = 0; b < size; ++b) {
            numbers[size + b] =
                static_cast<double>(multiply_modulo(static_cast<std::uint64_t>(numbers[b]), root, p));
        }
    }
    for (std::uint64_t b = 0; b < std::uint64_t{1} << bits; ++b) {
        numbers[b] = balanced(static_cast<std::uint64_t>(numbers[b]), p);
    }
}

}  // namespace

Transform::Transform(const char* function, const Plan& plan, bool negacyclic, const MultiplyContext& context)
    : function_(function),
      plan_(plan),
      negacyclic_(negacyclic),
      context_(context),
      tables_(&covering_tables(function, plan, context)),
      kernels_(transform_kernels()),
      conversion_(conversion_kernels()) {
    require_capacity(function, context.scratch_words, plan.scratch_words(1));
    tasks_ = tasks_for(plan, context);
    leaf_roots_ = reinterpret_cast<double*>(context.scratch);
    spills_ = context.scratch + plan.leaf_roots_doubles();
    workspaces_ = reinterpret_cast<double*>(context.scratch + plan.shared_words());
    prepare_leaf_roots();
}

void Transform::prepare_leaf_roots() const {
    const std::uint64_t leaf_numbers = plan_.leaf_roots_doubles() / (2 * plan_.primes());
    const int leaf_bits = plan_.row_layers - plan_.leaf_layers;
    double* leaves = leaf_roots_;
    for (const bool inverse : {false, true}) {
        for (std::uint32_t prime = 0; prime < plan_.primes(); ++prime) {
            const PrimeConstants& c = constants(prime);
            const std::uint64_t p = prime_table[index_of(plan_.multiplier())][prime].value;
            std::fill(leaves, leaves + leaf_numbers, 0.0);
            mirrored_sequence(leaves, leaf_bits, plan_.leaf_layers, inverse ? c.inverse_root : c.root, p);
            leaves += leaf_numbers;
        }
    }
}

double Transform::row_root(std::uint32_t prime, std::uint64_t row, bool inverse) const {
    const PrimeConstants& c = constants(prime);
    const std::uint64_t p = prime_table[index_of(plan_.multiplier())][prime].value;
    const std::uint64_t subtree = row / plan_.subtree_rows(), node = row % plan_.subtree_rows();
    const std::uint64_t* roots = inverse ? c.inverse_root : c.root;
    std::uint64_t root = top_root(plan_, c, p, static_cast<std::uint32_t>(subtree), negacyclic_, inverse);
    for (int i = 0; i < plan_.column_layers; ++i) {
        if (node >> i & 1) root = multiply_modulo(root, roots[plan_.row_layers + i + 1], p);
    }
    return balanced(root, p);
}

}  // namespace qmp::vst
