// The second sweep: row by row, the transform's last layers, the pointwise product, and the way back.
#include <algorithm>
#include <cstring>

#include "multiply/vst/merge_constants.h"
#include "multiply/vst/transform_private.h"

namespace qmp::vst {
namespace {

std::uint64_t residue(double x, std::uint64_t p) {
    return x < 0 ? p - static_cast<std::uint64_t>(-x) : static_cast<std::uint64_t>(x);
}

}  // namespace

// The numbers that make a group of rows' factors, in one direction.
struct Transform::LeafRoots {
    LeafBase base;
    double* table;   // of the leaf at work
    double* values;  // of the row's layers above its leaves, and
    double* quotients;
    double* numbers;      // of every leaf of the group: e(a / its length), a the leaf's angle
    double* powers;       // those squared again and again
    std::uint64_t count;  // of leaves, a multiple of 8

    // `next` is moved behind what is taken.
    LeafRoots(const Plan& plan, double*& next)
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
                    std::uint64_t leaf, double scale) {
        kernels.leaf_table(table, base, plan.leaf_layers,
                           powers + static_cast<std::uint64_t>(plan.leaf_layers - 1) * count + leaf,
                           -static_cast<std::ptrdiff_t>(count), scale, modulus);
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

void Transform::group_of_rows(double* a, double* b, RowWork work, std::uint32_t prime, std::uint64_t group,
                              double* workspace) const {
    const bool forward = work.transform_a || work.transform_b, inverse = work.multiply;
    const std::uint64_t p = prime_table[index_of(plan_.multiplier())][prime].value;
    const PrimeModulus& modulus = constants(prime).modulus;
    const std::uint64_t first = group * plan_.rows_of_group();
    const std::uint64_t row_count = std::min(plan_.rows_of_group(), plan_.rows - first);
    const std::uint64_t leaves = plan_.leaves_of_row(), leaf_points = std::uint64_t{1} << plan_.leaf_layers;

    LeafRoots down(plan_, workspace), back(plan_, workspace);
    down.base = leaf_base(plan_.multiplier(), prime, kernels_.log_lanes, false);
    back.base = leaf_base(plan_.multiplier(), prime, kernels_.log_lanes, true);
    const std::uint64_t leaf_numbers = plan_.leaf_roots_doubles() / (2 * plan_.primes());
    const auto prepare = [&](LeafRoots& roots, bool back_way) {
        double row_roots[8];
        for (std::uint64_t row = 0; row < row_count; ++row) {
            row_roots[row] = row_root(prime, first + row, back_way);
        }
        const std::uint64_t index = (back_way ? plan_.primes() : 0) + prime;
        roots.prepare(kernels_, plan_, modulus, row_roots, row_count, leaf_roots_ + index * leaf_numbers);
    };
    if (forward) prepare(down, false);
    if (inverse) prepare(back, true);

    // 1 / (points * P / p): the points' number divides p - 1.
    const ConversionConstants& conversion = conversion_constants(plan_.primes(), plan_.multiplier());
    const std::uint64_t scale =
        multiply_modulo(p - (p - 1) / plan_.size.points(), conversion.cofactor_inverse[prime], p);
    const double scale_value = balanced(scale, p);

    const int row_layers = plan_.row_layers - plan_.leaf_layers;
    const Layers layers_down{leaf_points, row_layers, {down.values, down.quotients}, false};
    const Layers layers_back{leaf_points, row_layers, {back.values, back.quotients}, false};
    for (std::uint64_t row = 0; row < row_count; ++row) {
        const std::uint64_t offset = (first + row) * plan_.row_stride;
        double* row_a = a + offset;
        double* row_b = b + offset;
        if (forward && row_layers > 0) {
            down.make_row_factors(plan_, p, row);
            if (work.transform_a) kernels_.forward_layers(row_a, layers_down, modulus, false);
            if (work.transform_b) kernels_.forward_layers(row_b, layers_down, modulus, false);
        }
        for (std::uint64_t leaf = 0; leaf < leaves; ++leaf) {
            double* leaf_a = row_a + leaf * leaf_points;
            double* leaf_b = row_b + leaf * leaf_points;
            if (forward) {
                down.make_table(kernels_, plan_, modulus, row * leaves + leaf, 1);
                if (work.transform_a)
                    kernels_.leaf_forward(leaf_a, down.table, down.base, plan_.leaf_layers, modulus);
                if (work.transform_b)
                    kernels_.leaf_forward(leaf_b, down.table, down.base, plan_.leaf_layers, modulus);
            }
            if (inverse) {
                if (work.square_b) std::copy_n(leaf_b, leaf_points, leaf_a);
                kernels_.pointwise(leaf_a, leaf_b, leaf_points, modulus);
                back.make_table(kernels_, plan_, modulus, row * leaves + leaf, scale_value);
                kernels_.leaf_inverse(leaf_a, back.table, back.base, plan_.leaf_layers, modulus);
            }
        }
        if (inverse && row_layers > 0) {
            back.make_row_factors(plan_, p, row);
            kernels_.inverse_layers(row_a, layers_back, modulus);
        }
    }
}

}  // namespace qmp::vst
