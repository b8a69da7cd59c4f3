// The transform's kernels: there and back again modulo the prime, from inputs at the edges of their ranges,
// with results inside theirs (multiply/vst/NUMERICS.md).
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "multiply/vst/column_tables.h"
#include "multiply/vst/levels.h"
#include "multiply/vst/roots.h"
#include "platform/parallel/parallel_context.h"
#include "support/levels.h"
#include "support/random_words.h"

namespace {

using namespace qmp::vst;
using kelvara_test::Random;

constexpr std::uint64_t points_of_leaf = std::uint64_t{1} << longest_leaf;

class AlignedDoubles {
  public:
    explicit AlignedDoubles(std::uint64_t count) : lines_((count + 7) / 8) {}
    double* data() { return lines_.data()->values; }
    std::uint64_t size() const { return 8 * lines_.size(); }
    double& operator[](std::uint64_t i) { return data()[i]; }

  private:
    struct alignas(64) Line {
        double values[8] = {};
    };
    std::vector<Line> lines_;
};

class VstTransformKernels : public kelvara_test::LevelTest {
  protected:
    // The largest prime of each multiplier, which is where the ranges are widest.
    struct Field {
        std::uint32_t multiplier;
        std::uint64_t p;
        const PrimeConstants& constants;

        explicit Field(std::uint32_t m)
            : multiplier(m), p(prime_table[index_of(m)][0].value), constants(prime_constants(m, 0)) {}
        std::uint64_t residue(double x) const {
            const auto size = static_cast<std::uint64_t>(std::abs(x)) % p;
            return x < 0 && size != 0 ? p - size : size;
        }
    };

    const TransformKernels& kernels() const { return transform_kernels(); }
    // Whether products are fused, and with it the bounds.
    bool fused() const {
        return level() != qmp::InstructionLevel::sse2 && level() != qmp::InstructionLevel::scalar;
    }
    double low() const { return fused() ? 1.8 : 2.2; }
    double high() const { return fused() ? 3.0 : 3.7; }

    // Integers up to `bound` primes, every other one at the very edge.
    static void fill(Random& random, double* data, std::uint64_t count, double bound, std::uint64_t p) {
        const auto edge = static_cast<std::uint64_t>(bound * static_cast<double>(p));
        for (std::uint64_t i = 0; i < count; ++i) {
            const std::uint64_t size = random.next() % 2 == 0 ? edge : random.next() % (edge + 1);
            data[i] = random.next() % 2 == 0 ? static_cast<double>(size) : -static_cast<double>(size);
        }
    }
    static void expect_bounded(const double* data, std::uint64_t count, double bound, std::uint64_t p) {
        for (std::uint64_t i = 0; i < count; ++i) {
            ASSERT_EQ(data[i], std::nearbyint(data[i])) << i;
            ASSERT_LE(std::abs(data[i]), bound * static_cast<double>(p)) << i;
        }
    }
    // The same residues, of at most 1.8 primes and often near that: the inputs of the way back.
    static void widen(Random& random, double* data, std::uint64_t count, const Field& field) {
        const auto p = static_cast<double>(field.p);
        for (std::uint64_t i = 0; i < count; ++i) {
            double x = static_cast<double>(field.residue(data[i]));
            if (x <= 0.8 * p) {
                x += random.next() % 2 == 0 ? p : 0;
            } else if (x >= 0.2 * p && random.next() % 2 == 0) {
                x -= 2 * p;
            }
            data[i] = x;
        }
    }
    static void expect_multiples(const double* data, const std::vector<std::uint64_t>& expected,
                                 std::uint64_t factor, const Field& field) {
        for (std::uint64_t i = 0; i < expected.size(); ++i) {
            ASSERT_EQ(field.residue(data[i]), multiply_modulo(expected[i], factor, field.p)) << i;
        }
    }
    static std::vector<std::uint64_t> residues(const double* data, std::uint64_t count, const Field& field) {
        std::vector<std::uint64_t> result(count);
        for (std::uint64_t i = 0; i < count; ++i) result[i] = field.residue(data[i]);
        return result;
    }
};
INSTANTIATE_EVERY_LEVEL(VstTransformKernels);

TEST_P(VstTransformKernels, LayersOfColumns) {
    constexpr int most_layers = 6;
    Random random(1);
    for (const std::uint32_t multiplier : multipliers) {
        const Field field(multiplier);
        AlignedDoubles memory(ColumnTables::doubles(multiplier, most_layers));
        const ColumnTables tables(multiplier, most_layers, memory.data(), qmp::ParallelContext::sequential());
        for (const bool negacyclic : {false, true}) {
            const bool trivial = multiplier == 1 && !negacyclic;
            const std::uint32_t subtree = multiplier - 1;
            for (int layers = 0; layers <= most_layers; ++layers) {
                for (const bool low_inputs : {true, false}) {
                    if (trivial && !low_inputs) continue;
                    SCOPED_TRACE(testing::Message()
                                 << multiplier << " " << negacyclic << " " << layers << " " << low_inputs);
                    const std::uint64_t count = tile_columns << layers;
                    AlignedDoubles data(count);
                    fill(random, data.data(), count, trivial ? 0.75 : low_inputs ? low() : high(), field.p);
                    const auto before = residues(data.data(), count, field);
                    const PrimeModulus& modulus = field.constants.modulus;
                    kernels().forward_layers(
                        data.data(),
                        {tile_columns, layers, tables.factors(0, negacyclic, subtree, false), trivial},
                        modulus, low_inputs);
                    expect_bounded(data.data(), count, high(), field.p);
                    widen(random, data.data(), count, field);
                    kernels().inverse_layers(
                        data.data(),
                        {tile_columns, layers, tables.factors(0, negacyclic, subtree, true), trivial},
                        modulus);
                    expect_bounded(data.data(), count, 1.8, field.p);
                    expect_multiples(data.data(), before, std::uint64_t{1} << layers, field);
                }
            }
        }
    }
}

TEST_P(VstTransformKernels, OuterSteps) {
    Random random(2);
    for (const std::uint32_t multiplier : {3u, 5u, 7u}) {
        for (const bool negacyclic : {false, true}) {
            SCOPED_TRACE(testing::Message() << multiplier << " " << negacyclic);
            const Field field(multiplier);
            const std::uint64_t block = 512, count = multiplier * block;
            AlignedDoubles data(count);
            fill(random, data.data(), count, 0.75, field.p);
            // All at the edge and of one sign, for the longest sums.
            for (std::uint64_t k = 0; k < multiplier; ++k)
                data[k * block] = std::floor(0.75 * field.constants.modulus.prime);
            const auto before = residues(data.data(), count, field);
            const PrimeModulus& modulus = field.constants.modulus;
            kernels().forward_outer[index_of(multiplier)](data.data(), block, field.constants.outer,
                                                          negacyclic, modulus);
            expect_bounded(data.data(), count, high(), field.p);
            widen(random, data.data(), count, field);
            kernels().inverse_outer[index_of(multiplier)](data.data(), block, field.constants.outer,
                                                          negacyclic, modulus);
            expect_bounded(data.data(), count, 5.5, field.p);
            expect_multiples(data.data(), before, multiplier, field);
        }
    }
}

TEST_P(VstTransformKernels, Leaves) {
    Random random(3);
    for (const std::uint32_t multiplier : multipliers) {
        for (int log_length = 6; log_length <= longest_leaf; ++log_length) {
            SCOPED_TRACE(testing::Message() << multiplier << " " << log_length);
            const Field field(multiplier);
            const PrimeModulus& modulus = field.constants.modulus;
            const std::uint64_t count = std::uint64_t{1} << log_length;
            // Any number does for e(a / length), and its squares for the layers before.
            double rho[2][longest_leaf];
            std::uint64_t root = random.between(1, field.p - 1), inverse = inverse_modulo(root, field.p);
            for (int l = log_length; l-- > 0;) {
                rho[0][l] = balanced(root, field.p);
                rho[1][l] = balanced(inverse, field.p);
                root = multiply_modulo(root, root, field.p);
                inverse = multiply_modulo(inverse, inverse, field.p);
            }
            const LeafBase down = leaf_base(multiplier, 0, kernels().log_lanes, false);
            const LeafBase back = leaf_base(multiplier, 0, kernels().log_lanes, true);
            const std::uint64_t scale = (field.p + 1) / 2;
            AlignedDoubles table_down(leaf_table_doubles), table_back(leaf_table_doubles),
                data(points_of_leaf);
            kernels().leaf_table(table_down.data(), down, log_length, rho[0], 1, 1, modulus);
            kernels().leaf_table(table_back.data(), back, log_length, rho[1], 1, balanced(scale, field.p),
                                 modulus);

            fill(random, data.data(), count, high(), field.p);
            const auto before = residues(data.data(), count, field);
            kernels().leaf_forward(data.data(), table_down.data(), down, log_length, modulus);
            expect_bounded(data.data(), count, 5.8, field.p);
            widen(random, data.data(), count, field);
            kernels().leaf_inverse(data.data(), table_back.data(), back, log_length, modulus);
            expect_bounded(data.data(), count, 1.8, field.p);
            expect_multiples(data.data(), before, multiply_modulo(scale, count, field.p), field);
        }
    }
}

TEST_P(VstTransformKernels, PointwiseProducts) {
    Random random(4);
    for (const std::uint32_t multiplier : multipliers) {
        const Field field(multiplier);
        AlignedDoubles a(points_of_leaf), b(points_of_leaf);
        fill(random, a.data(), points_of_leaf, 5.8, field.p);
        fill(random, b.data(), points_of_leaf, 5.8, field.p);
        const auto residues_a = residues(a.data(), points_of_leaf, field);
        const auto residues_b = residues(b.data(), points_of_leaf, field);
        kernels().pointwise(a.data(), b.data(), points_of_leaf, field.constants.modulus);
        expect_bounded(a.data(), points_of_leaf, 1.75, field.p);
        for (std::uint64_t i = 0; i < points_of_leaf; ++i) {
            ASSERT_EQ(field.residue(a[i]), multiply_modulo(residues_a[i], residues_b[i], field.p)) << i;
        }
    }
}

}  // namespace
