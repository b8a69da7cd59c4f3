// The kernels of the vector transform, one table of them per instruction-set level.
//
// Residues are doubles that hold integers, balanced around zero and only roughly reduced; the bounds stand
// with each kernel, in units of the prime, and are proved in NUMERICS.md and, of the conversions, in
// NUMERICS_CONVERSION.md. A tile is tile_columns neighbouring columns of the transform, row by row: element
// (row, column) at row * tile_columns + column.
#pragma once

#include <cstdint>

#include "multiply/vst/prime_table.h"

namespace qmp::vst {

constexpr std::uint64_t tile_columns = 32;

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

// A coefficient has two pieces of as many bits as a point, and what is left above them. It is built from
// limbs of 48 bits, but the last one of a piece has 24 where that is all that is left of it; the topmost,
// number primes - 1, holds everything above its position.
constexpr std::uint32_t limbs_per_piece(std::uint32_t primes) {
    return primes / 2;
}
constexpr std::uint32_t limb_position(std::uint32_t primes, std::uint32_t limb) {
    return limb / limbs_per_piece(primes) * (24 * (primes - 1)) + limb % limbs_per_piece(primes) * 48;
}
constexpr std::uint32_t limb_width(std::uint32_t primes, std::uint32_t limb) {
    return limb == primes - 1 ? 48 : limb_position(primes, limb + 1) - limb_position(primes, limb);
}
constexpr std::uint32_t most_limbs = most_primes + 1;

constexpr std::uint64_t spill_words = 4;

// Of one set of primes; P their product. Numbers as balanced limbs (|limb| <= 2^(width - 1), but the
// topmost).
struct MergeConstants {
    std::uint32_t primes;
    double prime[most_primes];
    double inverse[most_primes];
    double cofactor[most_primes][most_limbs];  // P / prime[i]
    // P; its topmost limb is balanced too, and product[primes] is the rest, at the topmost limb's position
    // (a multiple of 2^48).
    double product[most_limbs];
};

// Residue i of element (r, j) at residues[i * prime_stride + r * row_stride + j], |residue| <= 5.5: the
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
// Coefficients below 2^(48 * (primes - 1) + 42) in magnitude come out right; residues that belong to none
// give larger ones, as a rule near P. Returns the largest magnitude of a coefficient, less than
// 4 * 2^(48 * (primes - 1)) too large or too small, or more than 2^(48 * (primes - 1) + 62) when it is out of
// reach. One kernel per number of primes.
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
