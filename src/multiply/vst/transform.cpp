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

// numbers[b] = first * e(f(b) / 2^layers) for b < 2^bits, f(b) the mirrored bits of b: bit i of b
// contributes the root of order 2^(layers + i + 1).
void mirrored_sequence(double* numbers, int bits, int layers, std::uint64_t first, const std::uint64_t* roots,
                       std::uint64_t p) {
    numbers[0] = static_cast<double>(first);
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
    row_roots_ = reinterpret_cast<double*>(context.scratch);
    leaf_roots_ = row_roots_ + plan.row_roots_doubles();
    spills_ = context.scratch + plan.row_roots_doubles() + plan.leaf_roots_doubles();
    workspaces_ = reinterpret_cast<double*>(context.scratch + plan.shared_words());
    prepare_roots();
}

void Transform::prepare_roots() const {
    const std::uint64_t row_numbers = plan_.row_roots_doubles() / (2 * plan_.primes());
    const std::uint64_t leaf_numbers = plan_.leaf_roots_doubles() / (2 * plan_.primes());
    const int leaf_bits = plan_.row_layers - plan_.leaf_layers;
    double* rows = row_roots_;
    double* leaves = leaf_roots_;
    for (const bool inverse : {false, true}) {
        for (std::uint32_t prime = 0; prime < plan_.primes(); ++prime) {
            const PrimeConstants& c = constants(prime);
            const std::uint64_t p = prime_table[index_of(plan_.multiplier())][prime].value;
            const std::uint64_t* roots = inverse ? c.inverse_root : c.root;
            for (std::uint32_t s = 0; s < plan_.multiplier(); ++s) {
                mirrored_sequence(rows + s * plan_.subtree_rows(), plan_.column_layers, plan_.row_layers,
                                  top_root(plan_, c, p, s, negacyclic_, inverse), roots, p);
            }
            std::fill(leaves, leaves + leaf_numbers, 0.0);
            mirrored_sequence(leaves, leaf_bits, plan_.leaf_layers, 1, roots, p);
            rows += row_numbers;
            leaves += leaf_numbers;
        }
    }
}

}  // namespace qmp::vst
