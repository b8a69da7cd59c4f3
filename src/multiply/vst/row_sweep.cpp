// The second sweep: row by row, the transform's last layers, the pointwise product, and the way back.
#include <algorithm>
#include <bit>
#include <cstring>

#include "multiply/vst/merge_constants.h"
#include "multiply/vst/transform_private.h"

namespace qmp::vst {
namespace {

std::uint64_t residue(double x, std::uint64_t p) {
    return x < 0 ? p - static_cast<std::uint64_t>(-x) : static_cast<std::uint64_t>(x);
}

}  // namespace

// The factors of a group of rows, in one direction, and the numbers that make them.
struct Transform::RowFactors {
    LeafBase base;
    double* table;   // of the leaf at work
    double* values;  // of the row's layers above its leaves, and
    double* quotients;
    double* numbers;      // of every leaf of the group: e(a / its length), a the leaf's angle
    double* powers;       // those squared again and again
    std::uint64_t count;  // of leaves, a multiple of 8

    // `next` is moved behind what is taken.
    RowFactors(const Plan& plan, double*& next)
        : count((plan.rows_of_group() * plan.leaves_of_row() + 7) / 8 * 8) {
        const std::uint64_t nodes = (plan.leaves_of_row() + 7) / 8 * 8;
        table = next;
        values = table + leaf_table_doubles;
        quotients = values + nodes;
        numbers = quotients + nodes;
        powers = numbers + count;
        next = powers + count * static_cast<std::uint64_t>(plan.row_layers);
    }

    void prepare(const TransformKernels& kernels, const Plan& plan, const PrimeModulus& modulus,
                 const double* row_roots, std::uint64_t row_count, const double* leaf_roots) {
        // Eight at a time; what goes beyond a row's leaves is overwritten by the next row's.
        const std::uint64_t leaves = plan.leaves_of_row();
        alignas(64) double scaled[8];
        for (std::uint64_t row = 0; row < row_count; ++row) {
            for (std::uint64_t i = 0; i < leaves; i += 8) {
                kernels.scale(scaled, leaf_roots + i, row_roots[row], 8, modulus);
                std::memcpy(numbers + row * leaves + i, scaled, std::min<std::uint64_t>(leaves - i, 8) * 8);
            }
        }
        std::fill(numbers + row_count * leaves, numbers + count, 0.0);
        kernels.square_chain(powers, numbers, count, plan.row_layers, modulus);
    }
    // Layer l's number of the leaf is powers[leaf] of squaring step (leaf layers - 1 - l).
    void make_table(const TransformKernels& kernels, const Plan& plan, const PrimeModulus& modulus,
                    std::uint64_t leaf) {
        kernels.leaf_table(table, base, plan.leaf_layers,
                           powers + static_cast<std::uint64_t>(plan.leaf_layers - 1) * count + leaf,
                           -static_cast<std::ptrdiff_t>(count), modulus);
    }
    // The factors of the layers above the leaves. The row's angle is that of its first leaf.
    void make_row_factors(const Plan& plan, std::uint64_t p, std::uint64_t row) {
        const int layers = plan.row_layers - plan.leaf_layers;
        for (int l = 0; l < layers; ++l) {
            const double number = powers[static_cast<std::uint64_t>(plan.row_layers - 1 - l) * count +
                                         row * plan.leaves_of_row()];
            for (std::uint64_t b = std::uint64_t{1} << l; b < std::uint64_t{2} << l; ++b) {
                values[b] = balanced(multiply_modulo(residue(number, p), residue(base.nodes[b], p), p), p);
                quotients[b] = values[b] / static_cast<double>(p);
            }
        }
    }
};

void Transform::rows(PrimeRange primes, double* a, double* b, RowWork work) const {
    const std::uint64_t groups = plan_.groups();
    for_units(groups * (primes.end - primes.begin), [&](double* workspace, std::uint64_t begin,
                                                        std::uint64_t end) {
        for (std::uint64_t unit = begin; unit < end; ++unit) {
            const std::uint64_t matrix = unit / groups * plan_.prime_stride;
            group_of_rows(a + matrix, b + matrix, work,
                          primes.begin + static_cast<std::uint32_t>(unit / groups), unit % groups, workspace);
        }
    });
}

// Rows come in pairs whose angles add up to the whole circle. Where the angles of two nodes do, so do those
// of their children, crosswise, and e((1 - a) / 2) = -e(-a / 2). So a row goes down by the factors that its
// mirror row goes back by, and the other way round: its points only come to lie in another order, which
// nobody sees. That of angle 0 and that of 1/2 have no other one, and those of the negacyclic form are left
// alone.
std::uint64_t Transform::mirror_row(std::uint64_t row) const {
    if (negacyclic_) return row;
    const std::uint64_t subtree = row / plan_.subtree_rows(), node = row % plan_.subtree_rows();
    if (subtree > 0) {
        return (plan_.multiplier() - subtree) * plan_.subtree_rows() + (plan_.subtree_rows() - 1 - node);
    }
    // f(b) and 1 - f(b): all but the last bit that is set, which is the leading one of b.
    return node == 0 ? row : node ^ (std::bit_floor(node) - 1);
}

void Transform::group_of_rows(double* a, double* b, RowWork work, std::uint32_t prime, std::uint64_t group,
                              double* workspace) const {
    const std::uint64_t first = group * plan_.rows_of_group();
    const std::uint64_t row_count = std::min(plan_.rows_of_group(), plan_.rows - first);
    const auto leads = [&](std::uint64_t row) { return mirror_row(row) >= row; };
    std::uint64_t leading = first;
    while (leading < first + row_count && !leads(leading)) ++leading;
    if (leading == first + row_count) return;

    const std::uint64_t p = prime_table[index_of(plan_.multiplier())][prime].value;
    const PrimeModulus& modulus = constants(prime).modulus;
    RowFactors down(plan_, workspace), back(plan_, workspace);
    const auto prepare = [&](RowFactors& factors, bool inverse) {
        double row_roots[8];
        for (std::uint64_t row = 0; row < row_count; ++row)
            row_roots[row] = row_root(prime, first + row, inverse);
        const std::uint64_t leaf_numbers = plan_.leaf_roots_doubles() / (2 * plan_.primes());
        const std::uint64_t index = (inverse ? plan_.primes() : 0) + prime;
        factors.base = leaf_base(plan_.multiplier(), prime, kernels_.log_lanes, inverse);
        factors.prepare(kernels_, plan_, modulus, row_roots, row_count, leaf_roots_ + index * leaf_numbers);
    };
    prepare(down, false);
    prepare(back, true);

    // 1 / (points * P / p): the points' number divides p - 1.
    const ConversionConstants& conversion = conversion_constants(plan_.primes(), plan_.multiplier());
    const std::uint64_t scale =
        multiply_modulo(p - (p - 1) / plan_.size.points(), conversion.cofactor_inverse[prime], p);
    const double scale_value = balanced(scale, p);
    const double scale_quotient = scale_value / static_cast<double>(p);

    const bool forward = work.transform_a || work.transform_b;
    const std::uint64_t leaf_points = std::uint64_t{1} << plan_.leaf_layers;
    const int row_layers = plan_.row_layers - plan_.leaf_layers;
    const auto layers = [&](const RowFactors& factors) {
        return Layers{leaf_points, row_layers, {factors.values, factors.quotients}, false};
    };
    const auto layers_down = [&](std::uint64_t row, const RowFactors& factors) {
        if (work.transform_a)
            kernels_.forward_layers(a + row * plan_.row_stride, layers(factors), modulus, false);
        if (work.transform_b)
            kernels_.forward_layers(b + row * plan_.row_stride, layers(factors), modulus, false);
    };
    const auto leaf_work = [&](std::uint64_t row, std::uint64_t leaf, const RowFactors& ahead,
                               const RowFactors& behind) {
        const std::uint64_t offset = row * plan_.row_stride + leaf * leaf_points;
        double* leaf_a = a + offset;
        double* leaf_b = b + offset;
        if (work.transform_a) kernels_.leaf_forward(leaf_a, ahead.table, plan_.leaf_layers, modulus);
        if (work.transform_b) kernels_.leaf_forward(leaf_b, ahead.table, plan_.leaf_layers, modulus);
        if (!work.multiply) return;
        if (work.square_b) std::copy_n(leaf_b, leaf_points, leaf_a);
        kernels_.pointwise(leaf_a, leaf_b, leaf_points, scale_value, scale_quotient, modulus);
        kernels_.leaf_inverse(leaf_a, behind.table, plan_.leaf_layers, modulus);
    };

    for (std::uint64_t row = leading; row < first + row_count; ++row) {
        if (!leads(row)) continue;
        const std::uint64_t mirror = mirror_row(row);
        const bool paired = mirror != row;
        // With a mirror row either table is needed whatever the work is.
        const bool needs_down = forward || paired, needs_back = work.multiply || paired;
        if (row_layers > 0) {
            if (needs_down) down.make_row_factors(plan_, p, row - first);
            if (needs_back) back.make_row_factors(plan_, p, row - first);
            layers_down(row, down);
            if (paired) layers_down(mirror, back);
        }
        for (std::uint64_t leaf = 0; leaf < plan_.leaves_of_row(); ++leaf) {
            const std::uint64_t index = (row - first) * plan_.leaves_of_row() + leaf;
            if (needs_down) down.make_table(kernels_, plan_, modulus, index);
            if (needs_back) back.make_table(kernels_, plan_, modulus, index);
            leaf_work(row, leaf, down, back);
            if (paired) leaf_work(mirror, leaf, back, down);
        }
        if (work.multiply && row_layers > 0) {
            kernels_.inverse_layers(a + row * plan_.row_stride, layers(back), modulus);
            if (paired) kernels_.inverse_layers(a + mirror * plan_.row_stride, layers(down), modulus);
        }
    }
}

}  // namespace qmp::vst
