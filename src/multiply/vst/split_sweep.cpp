// The first sweep: an operand's points, tile by tile, to residues, and the columns' transforms.
#include "multiply/vst/merge_constants.h"
#include "multiply/vst/transform_private.h"

namespace qmp::vst {
namespace {

// Matrices that the caches cannot hold until the next sweep are written past them.
constexpr std::uint64_t cached_bytes = std::uint64_t{24} << 20;

}  // namespace

void Transform::split(double* matrix, const void* operand, std::uint64_t bytes) const {
    for_units(plan_.tiles(), [&](double* workspace, std::uint64_t begin, std::uint64_t end) {
        for (std::uint64_t tile = begin; tile < end; ++tile) {
            split_tile(all_primes(), matrix, operand, bytes, tile, workspace);
        }
    });
}

void Transform::split(PrimeRange primes, double* matrix_a, const void* a, std::uint64_t bytes_a,
                      double* matrix_b, const void* b, std::uint64_t bytes_b) const {
    for_units(2 * plan_.tiles(), [&](double* workspace, std::uint64_t begin, std::uint64_t end) {
        // The operands in turn, since the longer one costs more.
        for (std::uint64_t unit = begin; unit < end; ++unit) {
            if (unit % 2 == 0) {
                split_tile(primes, matrix_a, a, bytes_a, unit / 2, workspace);
            } else {
                split_tile(primes, matrix_b, b, bytes_b, unit / 2, workspace);
            }
        }
    });
}

void Transform::split_tile(PrimeRange range, double* matrix, const void* operand, std::uint64_t bytes,
                           std::uint64_t tile, double* workspace) const {
    const std::uint32_t primes = plan_.primes();
    const std::uint64_t points = (bytes + plan_.point_bytes - 1) / plan_.point_bytes;
    const std::uint64_t first_point = tile * tile_columns;
    const std::uint64_t filled =
        points <= first_point ? 0 : (points - first_point + plan_.columns - 1) / plan_.columns;
    double* buffer = workspace;
    double* chunks = workspace + plan_.tile_doubles();
    if (filled > 0) {
        conversion_.split[primes](
            chunks, {static_cast<const unsigned char*>(operand), bytes, first_point, plan_.columns, filled});
    }
    const ConversionConstants& conversion = conversion_constants(primes, plan_.multiplier());
    const bool past_caches = 2 * (range.end - range.begin) * plan_.prime_stride * sizeof(Word) > cached_bytes;
    const std::uint64_t subtree = plan_.subtree_rows() * tile_columns;
    for (std::uint32_t prime = range.begin; prime < range.end; ++prime) {
        const PrimeModulus& modulus = constants(prime).modulus;
        if (filled > 0) {
            conversion_.reduce[chunks_of(primes)](buffer, chunks, filled, conversion.reduce[prime]);
        }
        std::fill(buffer + filled * tile_columns, buffer + plan_.tile_doubles(), 0.0);
        kernels_.forward_outer[index_of(plan_.multiplier())](buffer, subtree, constants(prime).outer,
                                                             negacyclic_, modulus);
        for (std::uint32_t s = 0; s < plan_.multiplier(); ++s) {
            const bool trivial = plan_.multiplier() == 1 && !negacyclic_;
            const NodeFactors factors = tables_->factors(prime, negacyclic_, s, false);
            double* first_row = matrix + (prime - range.begin) * plan_.prime_stride +
                                s * plan_.subtree_rows() * plan_.row_stride + first_point;
            kernels_.forward_layers(buffer + s * subtree,
                                    {tile_columns, plan_.column_layers, factors, trivial,
                                     {first_row, plan_.row_stride, past_caches}},
                                    modulus, plan_.multiplier() == 1);
        }
    }
}

}  // namespace qmp::vst
