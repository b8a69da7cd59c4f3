// The kernels of the vector transform, one table of them per instruction-set level.
//
// Residues are doubles that hold integers, balanced around zero and only roughly reduced; the bounds stand
// with each kernel, in units of the prime, and are proved in NUMERICS.md. A tile is tile_columns
// neighbouring columns of the transform, row by row: element (row, column) at row * tile_columns + column.
#pragma once

#include <cstdint>

#include "multiply/vst/prime_table.h"

namespace qmp::vst {

constexpr std::uint64_t tile_columns = 8;

// A point of 24 * (primes - 1) bits is cut into fields of 48 bits, the last one shorter: 3 or 4 of them.
constexpr std::uint32_t chunk_bits = 48;
constexpr std::uint32_t chunks_of(std::uint32_t primes) {
    return (24 * (primes - 1) + chunk_bits - 1) / chunk_bits;
}
constexpr std::uint32_t most_chunks = chunks_of(most_primes);
constexpr std::uint64_t point_bytes_of(std::uint32_t primes) {
    return 3 * (std::uint64_t{primes} - 1);
}

// --- Operand to residues ---

// Which points: row r of the tile holds the points first_point + r * row_points + (0 .. tile_columns).
// The operand's bytes end at operand_bytes: everything beyond is zero and is not read.
struct SplitTile {
    const unsigned char* operand;
    std::uint64_t operand_bytes;
    std::uint64_t first_point;
    std::uint64_t row_points;
    std::uint64_t rows;
};
// Field c of element (r, j) to chunks[(c * rows + r) * tile_columns + j]. One kernel per number of primes.
using Split = void (*)(double* chunks, const SplitTile& tile);

struct ReduceConstants {
    double prime;
    double inverse;              // 1 / prime
    double powers[most_chunks];  // 2^(48 c) modulo the prime, balanced: |power| <= prime / 2
};
// The residues of the points whose fields `chunks` holds; |residue| <= 0.75. One kernel per number of
// fields.
using Reduce = void (*)(double* residues, const double* chunks, std::uint64_t rows,
                        const ReduceConstants& constants);

// --- Residues to product ---

constexpr std::uint32_t limb_bits = 48;
constexpr std::uint32_t most_limbs = 10;
constexpr std::uint64_t spill_words = 4;

// Of one set of primes; P their product. Numbers as balanced limbs of 48 bits (|limb| <= 2^47), lowest first.
struct MergeConstants {
    std::uint32_t primes;
    double prime[most_primes];
    double inverse[most_primes];
    double cofactor[most_primes][most_limbs];  // P / prime[i]
    double product[most_limbs];                // P
};

// Residue i of element (r, j) at residues[i * prime_stride + r * row_stride + j], |residue| <= 2.5: the
// numbers t(i) for which the coefficient is the sum of t(i) * P / prime[i] modulo P, of least magnitude.
// Row r's coefficients are added up, each 24 * (primes - 1) bits above the one before: the lowest
// tile_columns * point_bytes bytes of the sum to out + r * out_stride, nothing beyond them, and what is
// left above them, a signed number of spill_words words, to spills + r * spill_stride. Coefficients may
// be negative; the bytes are then those of the sum modulo their range, and the spill is its floor.
struct MergeTile {
    const double* residues;
    std::uint64_t prime_stride;  // in doubles
    std::uint64_t row_stride;    // in doubles
    std::uint64_t rows;
    unsigned char* out;
    std::uint64_t out_stride;  // in bytes
    std::uint64_t* spills;
    std::uint64_t spill_stride;  // in words
};
// Returns a number near the largest magnitude of a coefficient (relative error below 2^-20). One kernel
// per number of primes.
using Merge = double (*)(const MergeConstants& constants, const MergeTile& tile);

struct ConversionKernels {
    Split split[most_primes + 1];    // by number of primes
    Reduce reduce[most_chunks + 1];  // by number of fields
    Merge merge[most_primes + 1];    // by number of primes
};

extern const ConversionKernels conversion_scalar;
extern const ConversionKernels conversion_sse2;
extern const ConversionKernels conversion_fma4;
extern const ConversionKernels conversion_avx2;
extern const ConversionKernels conversion_avx512;

}  // namespace qmp::vst
